#pragma once

#include <string>
#include <string_view>

namespace keplo {

/// What became of a key, as programs tell it in their output.
struct PressLine {
  std::string_view What;  // "press", "hold", "release"
  std::string Command;    // protocol&command; empty for a code that was not learned
  std::string Code;       // with the leading G
  int Count = 0;          // signals so far
  int HeldMs = 0;
};

/// The line for a person, or as one JSON object; with the time now and without a line end.
std::string TextOf(const PressLine& line, bool json);

}  // namespace keplo
