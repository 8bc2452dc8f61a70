#pragma once

#include <string>
#include <string_view>

namespace keplo {

/// Quotes a word for a shell.
inline std::string ShellQuoted(std::string_view word) {
  std::string quoted = "'";
  for (const char character : word) quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + "'";
}

/// A command line for the user to type.
/// @param words the arguments of the program: "settings ANALYSIS 1"
/// @param appPath the application path; empty if the program finds it by itself
inline std::string TypedCommand(std::string_view words, std::string_view appPath) {
  std::string command = "keplo " + std::string(words);
  return appPath.empty() ? command : command + " --app-path " + ShellQuoted(appPath);
}

}  // namespace keplo
