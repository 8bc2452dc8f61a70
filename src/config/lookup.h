#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"

namespace keplo {

/// A learned command and the section it stands in.
struct FoundCommand {
  std::string Protocol, Command;
};

/// Finds the first command of a text whose code begins with the given digits.
/// @param code digits without the leading G
/// @param limit a match that ends at this position or ahead of it does not count; it lies in the head of the
/// file
/// @return names as the text spells them, either may be empty; the section may be [General], see IsGeneral
std::optional<FoundCommand> FindCommand(std::string_view text, std::string_view code, int limit);

/// Whether a section is the one of the settings, which holds no commands.
bool IsGeneral(std::string_view protocol);

/// Sets CurProtocol and CurCommand to the command of a code. A match in [General] sets them too, but is none.
/// @param code digits without the leading G
/// @param protoKind 2 for RC5, where the toggle digit does not count
/// @return true if a protocol has the command
bool LookupCommand(CfgStore& store, std::string_view code, std::int16_t protoKind);

}  // namespace keplo
