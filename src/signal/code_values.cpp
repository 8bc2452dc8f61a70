#include "signal/code_values.h"

#include <algorithm>
#include <array>

#include "signal/first_analysis.h"

namespace keplo {

namespace {

/// Where the numbers stand in a code of one length; offsets from 0.
struct CodeLayout {
  std::int16_t Kind;
  std::size_t Digits;
  bool LowBitFirst;  // the digits come in from the lowest on, so they are turned around first
  std::size_t Address, AddressDigits;
  std::size_t Command, CommandDigits;
  std::size_t Extended, ExtendedDigits;
};

constexpr std::size_t kMostDigits = 20;
constexpr std::size_t kRc5CommandDigits = 6;

constexpr std::array<CodeLayout, 5> kLayouts = {{
    {kSony, 12, true, 0, 5, 5, 7, 0, 0},
    {kSony, 15, true, 0, 8, 8, 7, 0, 0},
    {kSony, 20, true, 8, 5, 13, 7, 0, 8},
    {kRc5, 14, false, 3, 5, 8, kRc5CommandDigits, 0, 0},
    {kRc6, 20, false, 4, 8, 12, 8, 0, 0},
}};

}  // namespace

std::int16_t BinToInt(std::string_view digits) {
  unsigned value = 0;
  for (const char digit : digits) value = value * 2 + (digit == '1' ? 1U : 0U);
  return static_cast<std::int16_t>(value);
}

std::optional<CodeValues> ValuesOfCode(std::string_view code, std::int16_t kind, Analysis analysis) {
  if (code.find_first_not_of("01") != std::string_view::npos) return std::nullopt;
  for (const CodeLayout& layout : kLayouts) {
    if (layout.Kind != kind || layout.Digits != code.size()) continue;
    if (layout.ExtendedDigits > 0 && analysis == Analysis::First) return std::nullopt;
    std::array<char, kMostDigits> ordered{};
    std::copy(code.begin(), code.end(), ordered.begin());
    if (layout.LowBitFirst) std::reverse_copy(code.begin(), code.end(), ordered.begin());
    const auto number = [&](std::size_t first, std::size_t digits) {
      return BinToInt({ordered.data() + first, digits});
    };
    CodeValues values{
        number(layout.Address, layout.AddressDigits), number(layout.Command, layout.CommandDigits), {}};
    if (layout.ExtendedDigits > 0) values.Extended = number(layout.Extended, layout.ExtendedDigits);
    // The first start bit counts as a seventh, highest digit of the command.
    if (kind == kRc5 && code.front() == '1') values.Command += std::int16_t{1} << kRc5CommandDigits;
    return values;
  }
  return std::nullopt;
}

}  // namespace keplo
