#pragma once

#include <string>
#include <string_view>

namespace keplo {

/// A word as a shell takes it whole, whatever characters are in it.
inline std::string ShellQuoted(std::string_view word) {
  std::string quoted = "'";
  for (const char character : word) quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + "'";
}

/// A command of the command line, as a person has to type it for an application path.
/// @param words after the program's name: "settings ANALYSIS 1"
/// @param appPath empty where the program finds it by itself
inline std::string TypedCommand(std::string_view words, std::string_view appPath) {
  std::string command = "keplo " + std::string(words);
  return appPath.empty() ? command : command + " --app-path " + ShellQuoted(appPath);
}

}  // namespace keplo
