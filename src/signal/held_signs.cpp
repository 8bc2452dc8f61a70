#include "signal/held_signs.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace keplo {

namespace {

/// 5.2 ms: longer than any space inside a frame, shorter than any between two, of which Dish has 5.9 ms.
constexpr int kBetweenFrames = 95;

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

bool IsWholeDitto(RunSpan piece, int baseT, int leader) {
  if (piece.size() != 3) return false;
  const bool ofNec =
      IsAbout(piece[0], 16, baseT) && IsAbout(piece[1], 4, baseT) && IsAbout(piece[2], 1, baseT);
  return ofNec || IsHeldSign(piece[0], piece[1], piece[2], leader);
}

}  // namespace

bool IsHeldSign(int leader, int space, int mark, int usual) {
  constexpr double kLeastSpace = 0.18, kMostSpace = 1.1;  // of the leader
  const double slack = std::max(3.0, 0.1 * usual);        // samples
  return usual > 0 && std::abs(leader - usual) <= slack && leader >= 4 * mark &&
         space >= kLeastSpace * usual && space <= kMostSpace * usual;
}

int FramePeriod(RunSpan runs) {
  int period = 0, before = 0;
  ForEachPiece(runs, [&](RunSpan /*piece*/, int start) {
    period = std::max(period, start - before);
    before = start;
  });
  return period;
}

bool AreDittos(RunSpan runs, int baseT, int leader) {
  int pieces = 0, whole = 0;
  bool sound = true, lastIsWhole = true;
  ForEachPiece(runs, [&](RunSpan piece, int /*start*/) {
    const bool insideIsBroken = pieces > 1 && !lastIsWhole;
    lastIsWhole = IsWholeDitto(piece, baseT, leader);
    sound = sound && !insideIsBroken && piece.size() <= 3;
    whole += lastIsWhole ? 1 : 0;
    ++pieces;
  });
  return sound && whole > 0;
}

}  // namespace keplo
