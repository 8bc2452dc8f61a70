#include "signal/decode.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>

#include "signal/first_analysis.h"
#include "signal/rc6.h"
#include "signal/run_symbols.h"

namespace keplo {

namespace {

/// The places of a symbol in a text of up to 64 characters, the first in the lowest bit.
std::uint64_t PlacesOf(char symbol, std::string_view text) {
  std::uint64_t places = 0;
  for (std::size_t i = 0; i < text.size(); ++i) places |= std::uint64_t{text[i] == symbol} << i;
  return places;
}

/// A digit for each run of a symbol: 1 for a run of several, 0 for a single one.
/// @return the place after the digits written
char* WriteLengths(std::string_view frame, char symbol, char* end) {
  constexpr std::size_t kAtOnce = 64;
  std::uint64_t before = 0;
  for (std::size_t first = 0; first < frame.size(); first += kAtOnce) {
    const std::string_view rest = frame.substr(first);
    const std::uint64_t places = PlacesOf(symbol, rest.substr(0, kAtOnce));
    const std::uint64_t next = rest.substr(std::min(kAtOnce, rest.size())).starts_with(symbol) ? 1 : 0;
    const std::uint64_t several = places >> 1U | next << (kAtOnce - 1);
    for (std::uint64_t begins = places & ~(places << 1U | before); begins != 0; begins &= begins - 1)
      *end++ = (several >> std::countr_zero(begins) & 1U) != 0 ? '1' : '0';
    before = places >> (kAtOnce - 1);
  }
  return end;
}

void DecodeLengths(std::string_view frame, std::int16_t kind, std::string& code) {
  code.resize(frame.size() / 2 + 1);
  code.resize(static_cast<std::size_t>(WriteDigits(frame, kind, code.data()) - code.data()));
}

void DecodeBiphase(std::string_view frame, std::string& code) {
  code.clear();
  // No receiver sees the first half bit, a space; the last one, when it is a space, ran into the gap.
  char first = '0';
  for (std::size_t second = 0; second <= frame.size(); second += 2) {
    const char half = second < frame.size() ? frame[second] : '0';
    if (half == first) {
      code.clear();
      return;
    }
    code += first == '1' ? '0' : '1';
    if (second + 1 >= frame.size()) break;
    first = frame[second + 1];
  }
  if (code.size() > kToggleBitOffset) code[kToggleBitOffset] = '0';
}

void DecodeRc6(std::string_view frame, std::string& code) {
  const std::optional<Rc6Frame> read = ReadRc6(frame);
  code = read ? read->Code() : std::string_view();
}

}  // namespace

bool WalkFirstFrame(RunSpan runs, int baseT, std::string& frame) {
  frame.clear();
  const std::size_t last = runs.size() - 1;
  std::size_t begin = 0;
  while (begin < last && !IsBorder(runs[begin], baseT)) ++begin;
  while (begin < last && IsBorder(runs[begin], baseT)) ++begin;
  if (begin >= last) return false;
  std::size_t end = begin;
  while (end < last && !IsBorder(runs[end], baseT)) ++end;

  SymbolWriter symbols(frame, end - begin);
  for (std::size_t run = begin; run < end; ++run) {
    if (run % 2 == 0) {
      symbols.Mark(runs[run], baseT);
    } else {
      symbols.Space(runs[run], baseT);
    }
  }
  return true;
}

std::optional<bool> ToggleOf(std::string_view frame, std::int16_t kind) {
  if (kind == kRc6) {
    const auto read = ReadRc6(frame);
    return read ? std::optional(read->Toggle == '1') : std::nullopt;
  }
  constexpr std::size_t kFirstHalf = 2 * kToggleBitOffset - 1;  // the frame lacks the half bit before it
  if (kind != kRc5 || frame.size() <= kFirstHalf) return std::nullopt;
  return frame[kFirstHalf] == '0';
}

char* WriteDigits(std::string_view frame, std::int16_t kind, char* end) {
  return WriteLengths(frame, kind == kSony ? '1' : '0', end);
}

void DecodeCode(std::string_view frame, std::int16_t kind, std::string& code) {
  switch (kind) {
    case kRc6:
      return DecodeRc6(frame, code);
    case kRc5:
      return DecodeBiphase(frame, code);
    default:
      return DecodeLengths(frame, kind, code);
  }
}

std::string DecodeCode(std::string_view frame, std::int16_t kind) {
  std::string code;
  DecodeCode(frame, kind, code);
  return code;
}

}  // namespace keplo
