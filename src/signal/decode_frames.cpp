#include "signal/decode_frames.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "signal/first_analysis.h"
#include "signal/rc6.h"

namespace keplo {

namespace {

constexpr int kLastMark = 6;  // borders that end the decoding: two frames and more are known by then

constexpr bool IsMark(char symbol) { return symbol == 'G' || symbol == 'g'; }

/// Symbols that are read one after the other, and what is decoded of them; past the end stands no character.
class SymbolReader {
 public:
  /// @param decoded replaced at the end
  SymbolReader(std::string_view symbols, std::string& decoded)
      : symbol_(symbols.data()), end_(symbols.data() + symbols.size()), decoded_(decoded) {
    decoded_.resize(symbols.size() + 1);
    written_ = decoded_.data();
  }
  SymbolReader(const SymbolReader&) = delete;
  SymbolReader& operator=(const SymbolReader&) = delete;
  ~SymbolReader() { decoded_.resize(static_cast<std::size_t>(written_ - decoded_.data())); }

  bool AtEnd() const { return symbol_ == end_; }
  void Skip() { symbol_ += AtEnd() ? 0 : 1; }
  bool TakeMark() { return TakeIf(!AtEnd() && IsMark(*symbol_)); }
  bool Take(char symbol) { return TakeIf(!AtEnd() && *symbol_ == symbol); }

  void Write(char decoded) { *written_++ = decoded; }
  void WriteDigit(int units) {
    if (units > 0) Write(units > 1 ? '1' : '0');
  }

 private:
  bool TakeIf(bool fits) {
    symbol_ += fits ? 1 : 0;
    return fits;
  }

  const char* symbol_;
  const char* end_;
  std::string& decoded_;
  char* written_;
};

/// A digit is told by the length of the space after a mark of one unit. Longer marks are read as several:
/// what lies beyond the first unit counts as a mark without a space, which adds nothing.
void DecodePulseDistanceFrames(std::string_view symbols, std::string& decoded) {
  SymbolReader reader(symbols, decoded);
  reader.Write('G');
  int marks = 0;
  while (!reader.AtEnd() && marks < kLastMark) {
    marks = 0;
    int spaces = 0;
    while (true) {
      if (reader.Take('0')) {
        ++spaces;
      } else if (reader.TakeMark()) {
        reader.Write('G');
        ++marks;
      } else {
        break;
      }
    }
    reader.WriteDigit(spaces);
    reader.Skip();
  }
}

/// A digit is told by the length of a mark.
void DecodePulseWidthFrames(std::string_view symbols, std::string& decoded) {
  SymbolReader reader(symbols, decoded);
  int marks = 0;
  while (!reader.AtEnd() && marks < kLastMark) {
    const bool mark = reader.TakeMark();
    if (mark) {
      reader.Write('G');
      ++marks;
    }
    const bool space = reader.Take('0');
    int units = 0;
    while (reader.Take('1')) ++units;
    reader.WriteDigit(units);
    if (!mark && !space && units == 0) reader.Skip();
  }
}

/// What a pair of half bits means, and how many symbols it takes.
struct HalfPair {
  static constexpr std::size_t kRoom = 4;  // what it means is written as one number

  char First, Second;
  std::uint8_t Size;  // of what it means
  std::array<char, kRoom> Decoded;
  std::uint8_t Step;
};

constexpr HalfPair kNoPair = {'?', '?', 0, {""}, 2};
constexpr HalfPair kHalfPairs[] = {
    {'1', '0', 1, {"0"}, 2},
    {'0', '1', 1, {"1"}, 2},
    // A last digit whose second half ran into the gap; the 1 after it opens the next frame.
    {'1', 'g', 3, {"0G1"}, 3},
    // A gap, and the half that opens the next frame; its first half is part of the gap.
    {'g', '1', 2, {"G1"}, 2},
    {'0', '0', 1, {"x"}, 2},
    {'1', '1', 1, {"y"}, 2},
};

const HalfPair& MeaningOf(char first, char second) {
  const auto* const pair =
      std::find_if(std::begin(kHalfPairs), std::end(kHalfPairs),
                   [&](const HalfPair& known) { return known.First == first && known.Second == second; });
  return pair == std::end(kHalfPairs) ? kNoPair : *pair;
}

void DecodeBiphaseFrames(std::string_view symbols, std::string& decoded) {
  constexpr std::size_t kAfter = 5;  // long spaces, so that a last pair is whole
  const auto half = [&](std::size_t offset) {
    return offset >= symbols.size() || IsMark(symbols[offset]) ? 'g' : symbols[offset];
  };
  // No pair means more characters than it has symbols.
  decoded.resize(symbols.size() + kAfter + HalfPair::kRoom);
  char* end = std::copy_n("G1", 2, decoded.data());
  for (std::size_t offset = 2; offset < symbols.size() + kAfter;) {
    const HalfPair& pair = MeaningOf(half(offset), half(offset + 1));
    std::memcpy(end, pair.Decoded.data(), HalfPair::kRoom);
    end += pair.Size;
    offset += pair.Step;
  }
  decoded.resize(static_cast<std::size_t>(end - decoded.data()));
}

void DecodeRc6Frames(std::string_view symbols, std::string& decoded) {
  decoded.clear();
  while (!symbols.empty()) {
    const std::size_t end = std::min(symbols.find_first_of("Gg"), symbols.size());
    if (const auto frame = ReadRc6(symbols.substr(0, end))) decoded += frame->Code();
    if (end == symbols.size()) return;
    decoded += 'G';
    symbols.remove_prefix(end + 1);
  }
}

std::string_view TakeFrame(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of('G'), rest.size()));
  const std::string_view frame = rest.substr(0, rest.find('G'));
  rest.remove_prefix(frame.size());
  return frame;
}

}  // namespace

void DecodeFrames(std::string_view symbols, std::int16_t kind, std::string& decoded) {
  switch (kind) {
    case kSony:
      return DecodePulseWidthFrames(symbols, decoded);
    case kRc5:
      return DecodeBiphaseFrames(symbols, decoded);
    case kRc6:
      return DecodeRc6Frames(symbols, decoded);
    default:
      return DecodePulseDistanceFrames(symbols, decoded);
  }
}

FramePair CutFrames(std::string_view decoded) {
  FramePair frames;
  frames.First = TakeFrame(decoded);
  frames.FirstEnded = !frames.First.empty() && !decoded.empty();
  frames.DoubleMarkAfter = decoded.substr(0, 2) == "GG";
  frames.Second = TakeFrame(decoded);
  return frames;
}

}  // namespace keplo
