#include "signal/held_signs.h"

#include <algorithm>
#include <cstddef>

namespace keplo {

namespace {

/// 6 ms: longer than any space inside a frame, shorter than any between two.
constexpr int kBetweenFrames = 110;

/// What stands between two long spaces, silence at either end left out.
template <typename Take>
void ForEachPiece(RunSpan runs, Take take) {
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(std::min<std::size_t>(2, runs.size()));
  int start = 0, time = 0;
  std::size_t first = 0;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const bool border = i % 2 == 1 && (runs[i] >= kBetweenFrames || i + 1 == runs.size());
    if (border) take(runs.subspan(first, i - first), start);
    time += runs[i];
    if (!border) continue;
    first = i + 1;
    start = time;
  }
  if (first < runs.size()) take(runs.subspan(first), start);
}

bool IsAbout(int run, double units, int baseT) {
  const double off = run - units * baseT;
  const double slack = 0.15 * units * baseT + 4;  // receivers stretch and shrink any run by up to 150 us
  return off >= -slack && off <= slack;
}

bool IsWholeDitto(RunSpan piece, int baseT) {
  return piece.size() == 3 && IsAbout(piece[0], 16, baseT) && IsAbout(piece[1], 4, baseT) &&
         IsAbout(piece[2], 1, baseT);
}

}  // namespace

int FramePeriod(RunSpan runs) {
  int period = 0, before = 0;
  ForEachPiece(runs, [&](RunSpan /*piece*/, int start) {
    period = std::max(period, start - before);
    before = start;
  });
  return period;
}

bool AreDittos(RunSpan runs, int baseT) {
  int pieces = 0, whole = 0;
  bool sound = true, lastIsWhole = true;
  ForEachPiece(runs, [&](RunSpan piece, int /*start*/) {
    const bool insideIsBroken = pieces > 1 && !lastIsWhole;
    lastIsWhole = IsWholeDitto(piece, baseT);
    sound = sound && !insideIsBroken && piece.size() <= 3;
    whole += lastIsWhole ? 1 : 0;
    ++pieces;
  });
  return sound && whole > 0;
}

}  // namespace keplo
