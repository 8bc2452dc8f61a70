#include "signal/decode.h"

#include <algorithm>

#include "signal/run_symbols.h"
#include "signal/timing.h"

namespace keplo {

namespace {

std::string DecodePulseDistance(std::string_view frame) {
  std::string code;
  std::size_t offset = 0;
  while (offset < frame.size()) {
    const std::size_t spaces = RunLength(frame, offset, '0');
    offset += spaces;
    if (spaces > 0) code += spaces > 1 ? '1' : '0';
    if (offset < frame.size()) ++offset;
  }
  return code;
}

std::string DecodePulseWidth(std::string_view frame) {
  std::string code;
  std::size_t offset = 0;
  while (true) {
    offset += RunLength(frame, offset, '0');
    if (offset >= frame.size()) return code;
    const std::size_t marks = RunLength(frame, offset, '1');
    offset += marks;
    code += marks > 1 ? '1' : '0';
  }
}

std::string DecodeBiphase(std::string_view frame) {
  // No receiver sees the first half bit, a space; the last one, when it is a space, ran into the gap.
  std::string halves = "0";
  halves += frame;
  if (halves.size() % 2 == 1) halves += '0';

  std::string code;
  for (std::size_t offset = 0; offset < halves.size(); offset += 2) {
    if (halves[offset] == halves[offset + 1]) return {};
    code += halves[offset] == '1' ? '0' : '1';
  }
  if (code.size() > kToggleBitOffset) code[kToggleBitOffset] = '0';
  return code;
}

}  // namespace

std::optional<std::string> WalkRuns(std::string_view samples, int baseT) {
  std::string symbols;
  symbols.reserve(samples.size() / 8);
  std::size_t offset = 0;
  while (true) {
    // Samples that begin with a space enter here with a run of 0, which counts as one unit; it stands ahead
    // of the first mark and goes with the rest of the head.
    const std::size_t ones = RunLength(samples, offset, '1');
    offset += ones;
    if (offset >= samples.size()) return std::nullopt;
    AppendRun(symbols, RunUnits(static_cast<int>(ones), baseT), '1', 'G');

    const std::size_t zeros = RunLength(samples, offset, '0');
    offset += zeros;
    if (offset >= samples.size()) {
      symbols += 'g';
      return symbols;
    }
    AppendRun(symbols, RunUnits(static_cast<int>(zeros), baseT), '0', 'g');
  }
}

std::optional<std::string_view> IsolateFrame(std::string_view symbols) {
  const std::size_t firstMark = symbols.find_first_of(kMarks);
  if (firstMark == std::string_view::npos) return std::nullopt;
  const std::size_t begin = symbols.find_first_not_of(kMarks, firstMark);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = symbols.find_first_of(kMarks, begin);
  if (end == std::string_view::npos) return std::nullopt;
  return symbols.substr(begin, end - begin);
}

std::string DecodeCode(std::string_view frame, std::int16_t kind) {
  switch (kind) {
    case kSony:
      return DecodePulseWidth(frame);
    case kRc5:
      return DecodeBiphase(frame);
    default:
      return DecodePulseDistance(frame);
  }
}

}  // namespace keplo
