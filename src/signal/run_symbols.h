#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo {

/// Marks of a frame's borders: G for a mark too long for a digit, g for such a space or the end of the
/// signal.
inline constexpr std::string_view kMarks = "Gg";

/// Appends one run to run symbols.
/// @param units what RunUnits gives for the run
/// @param symbol 1 or 0
/// @param mark what stands for a run that is too long
inline void AppendRun(std::string& symbols, int units, char symbol, char mark) {
  constexpr int kMarkUnits = 9;
  if (units == kMarkUnits) {
    symbols += mark;
  } else {
    symbols.append(static_cast<std::size_t>(units), symbol);
  }
}

}  // namespace keplo
