#include "signal/second_look/runs.h"

#include <algorithm>
#include <array>

#include "signal/timing.h"

namespace keplo::robust {

namespace {

constexpr double kGapUnits = 5.5;  // longer spaces part frames; within a frame four base times occur

/// A quarter of the runs at every second place are no longer than this.
int LowerQuartile(const int* runs, std::size_t size, std::size_t first) {
  std::array<int, 256> counts{};
  int all = 0;
  for (std::size_t i = first; i < size; i += 2, ++all) {
    ++counts.at(std::min<std::size_t>(static_cast<std::size_t>(runs[i]), counts.size() - 1));
  }
  int seen = 0;
  for (std::size_t length = 0; length < counts.size(); ++length) {
    seen += counts.at(length);
    if (seen * 4 > all) return static_cast<int>(length);
  }
  return 0;
}

}  // namespace

RunList ReadRuns(std::string_view samples, int interferenceLimit) {
  RunList runs;
  runs.Lengths.reserve(256);
  std::size_t offset = 0;
  bool inMark = false;
  while (offset < samples.size()) {
    const bool mark = samples[offset] == '1';
    const auto length = static_cast<int>(RunLength(samples, offset, mark ? '1' : '0'));
    offset += static_cast<std::size_t>(length);
    const bool interference = length <= interferenceLimit;
    if (runs.Lengths.empty() && (!mark || interference)) continue;
    if (!runs.Lengths.empty() && (interference || mark == inMark)) {
      runs.Lengths.back() += length;
    } else {
      runs.Lengths.push_back(length);
      inMark = mark;
    }
  }
  if (!runs.Lengths.empty() && !inMark) {
    runs.Silence = runs.Lengths.back();
    runs.Lengths.pop_back();
  }
  return runs;
}

double RoughUnit(const int* runs, std::size_t size) {
  return (LowerQuartile(runs, size, 0) + LowerQuartile(runs, size, 1)) / 2.0;
}

std::vector<Piece> SplitPieces(const RunList& runs) {
  std::vector<Piece> pieces;
  const std::vector<int>& lengths = runs.Lengths;
  const double gap = kGapUnits * RoughUnit(lengths.data(), lengths.size());
  std::size_t first = 0;
  for (std::size_t i = 1; i < lengths.size(); i += 2) {
    if (lengths[i] <= gap) continue;
    pieces.push_back({&lengths[first], i - first, lengths[i]});
    first = i + 1;
  }
  if (!lengths.empty()) pieces.push_back({&lengths[first], lengths.size() - first, runs.Silence});
  return pieces;
}

}  // namespace keplo::robust
