#pragma once

#include <string>
#include <string_view>

namespace keplo {

/// A press, hold or release of a key, for output.
struct PressLine {
  std::string_view What;  // "press", "hold", "release"
  std::string Command;    // protocol&command; empty if the code was not learned
  std::string Code;       // with the leading G
  int Count = 0;          // number of signals so far
  int HeldMs = 0;
};

/// A line of text or a JSON object, with the current time and without a line end.
std::string TextOf(const PressLine& line, bool json);

}  // namespace keplo
