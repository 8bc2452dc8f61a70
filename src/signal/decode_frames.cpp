#include "signal/decode_frames.h"

#include <algorithm>

#include "signal/run_symbols.h"
#include "signal/timing.h"

namespace keplo {

namespace {

constexpr int kLastMark = 6;  // marks that end the decoding: by then two frames and more have been seen

bool IsMark(char symbol) { return kMarks.find(symbol) != std::string_view::npos; }

/// Symbols that are read one behind the other; past the end stands no character.
class SymbolReader {
 public:
  explicit SymbolReader(std::string_view symbols) : symbols_(symbols) {}

  bool AtEnd() const { return offset_ >= symbols_.size(); }
  void Skip() { ++offset_; }

  bool TakeMark() { return TakeIf(!AtEnd() && IsMark(symbols_[offset_])); }
  bool Take(char symbol) { return TakeIf(!AtEnd() && symbols_[offset_] == symbol); }
  std::size_t TakeRun(char symbol) {
    const std::size_t length = AtEnd() ? 0 : RunLength(symbols_, offset_, symbol);
    offset_ += length;
    return length;
  }

 private:
  bool TakeIf(bool fits) {
    if (fits) ++offset_;
    return fits;
  }

  std::string_view symbols_;
  std::size_t offset_ = 0;
};

void AppendDigit(std::string& decoded, std::size_t units) {
  if (units > 0) decoded += units > 1 ? '1' : '0';
}

/// A digit is told by the length of the space behind a mark of one unit. Longer marks are read as several:
/// what lies beyond the first unit counts as a mark without a space, which adds nothing.
std::string DecodePulseDistanceFrames(std::string_view symbols) {
  std::string decoded = "G";
  SymbolReader reader(symbols);
  while (!reader.AtEnd()) {
    int marks = 0;
    std::size_t spaces = 0;
    while (true) {
      if (reader.TakeMark()) {
        decoded += 'G';
        ++marks;
      } else if (reader.Take('0')) {
        ++spaces;
      } else {
        break;
      }
    }
    AppendDigit(decoded, spaces);
    if (marks >= kLastMark) break;
    reader.Skip();
  }
  return decoded;
}

/// A digit is told by the length of a mark.
std::string DecodePulseWidthFrames(std::string_view symbols) {
  std::string decoded;
  SymbolReader reader(symbols);
  int marks = 0;
  while (!reader.AtEnd() && marks < kLastMark) {
    const bool mark = reader.TakeMark();
    if (mark) {
      decoded += 'G';
      ++marks;
    }
    const bool space = reader.Take('0');
    const std::size_t units = reader.TakeRun('1');
    AppendDigit(decoded, units);
    if (!mark && !space && units == 0) reader.Skip();
  }
  return decoded;
}

/// What a pair of half bits means, and how many symbols it takes.
struct HalfPair {
  std::string_view Halves;
  std::string_view Decoded;
  std::size_t Step;
};

constexpr HalfPair kNoPair = {"", "", 2};
constexpr HalfPair kHalfPairs[] = {
    {"10", "0", 2},   {"01", "1", 2},
    {"1g", "0G1", 3},  // a last digit whose second half ran into the gap; the 1 behind opens the next frame
    {"g1", "G1", 2},   // a gap, and the half that opens the next frame; its first half is part of the gap
    {"00", "x", 2},   {"11", "y", 2},
};

const HalfPair& MeaningOf(std::string_view halves) {
  const auto* const pair = std::find_if(std::begin(kHalfPairs), std::end(kHalfPairs),
                                        [&](const HalfPair& known) { return known.Halves == halves; });
  return pair == std::end(kHalfPairs) ? kNoPair : *pair;
}

std::string DecodeBiphaseFrames(std::string_view symbols) {
  std::string halves(symbols);
  std::replace(halves.begin(), halves.end(), 'G', 'g');
  halves += "ggggg";  // so that a last pair is whole

  std::string decoded = "G1";
  std::size_t offset = 2;
  while (offset < halves.size()) {
    const HalfPair& pair = MeaningOf(std::string_view(halves).substr(offset, 2));
    decoded += pair.Decoded;
    offset += pair.Step;
  }
  return decoded;
}

std::string TakeFrame(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of('G'), rest.size()));
  std::string frame(rest.substr(0, rest.find('G')));
  rest.remove_prefix(frame.size());
  return frame;
}

}  // namespace

std::string DecodeFrames(std::string_view symbols, std::int16_t kind) {
  switch (kind) {
    case kSony:
      return DecodePulseWidthFrames(symbols);
    case kRc5:
      return DecodeBiphaseFrames(symbols);
    default:
      return DecodePulseDistanceFrames(symbols);
  }
}

FramePair CutFrames(std::string_view decoded) {
  FramePair frames;
  frames.First = TakeFrame(decoded);
  frames.FirstEnded = !frames.First.empty() && !decoded.empty();
  frames.DoubleMarkBehind = decoded.substr(0, 2) == "GG";
  frames.Second = TakeFrame(decoded);
  return frames;
}

}  // namespace keplo
