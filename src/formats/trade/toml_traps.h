#pragma once

#include <optional>
#include <string_view>

namespace keplo::trade {

/// A place of a text that the parser of TOML (toml++ 3.3) does not survive.
struct TomlTrap {
  int Line = 0;
  std::string_view Why;
};

/// The first such place. Letters outside ASCII stand in quotes and comments alone in TOML, and never begin a
/// line that a backslash has joined to the one before; elsewhere the parser's behaviour is undefined. A
/// dotted key of very many parts makes a tree whose removal takes up the stack.
std::optional<TomlTrap> FindTomlTrap(std::string_view text);

}  // namespace keplo::trade
