#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "signal/analysis_choice.h"

namespace keplo {

/// Value of a string of 0 and 1, most significant digit first; 0 for an empty one.
/// @param digits at most 15, so that the value fits
std::int16_t BinToInt(std::string_view digits);

/// The numbers that a remote's documentation gives for a code.
struct CodeValues {
  std::int16_t Address = 0;
  std::int16_t Command = 0;
  std::optional<std::int16_t> Extended =
      std::nullopt;  // SONY of 20 digits: the number after that of the address

  bool operator==(const CodeValues&) const = default;
};

/// Address and command of a code.
/// @param code digits without the leading G
/// @param analysis with Analysis::Second those of SONY codes of 20 digits too
/// @return nothing but for RC5 codes of 14 digits, SONY codes of 12 or 15 and RC6 codes of 20, all 0 or 1
std::optional<CodeValues> ValuesOfCode(std::string_view code, std::int16_t kind,
                                       Analysis analysis = Analysis::First);

}  // namespace keplo
