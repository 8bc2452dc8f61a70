#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/analysis_choice.h"

namespace keplo {

/// A learned command and the section it stands in.
struct FoundCommand {
  std::string Protocol, Command;
};

/// Finds the first command of a text whose code begins with the given digits; of a code that the second look
/// read, the first command with exactly these digits. It reads SONY codes of 12, 15 and 20 digits, which
/// would otherwise be taken for each other.
/// @param code digits without the leading G
/// @param limit a match that ends at this position or before it does not count; it lies in the head of the
/// file
/// @param readBy the analysis that the code comes from
/// @return names as the text spells them, either may be empty; the section may be [General], see
/// config/sections
std::optional<FoundCommand> FindCommand(std::string_view text, std::string_view code, int limit,
                                        Analysis readBy = Analysis::First);

/// Sets CurProtocol and CurCommand to the command of a code. A match in [General] sets them too, but is none.
/// @param code digits without the leading G
/// @param protoKind 2 for RC5, where the toggle digit does not count
/// @param readBy as with FindCommand
/// @return true if a protocol has the command
bool LookupCommand(CfgStore& store, std::string_view code, std::int16_t protoKind,
                   Analysis readBy = Analysis::First);

}  // namespace keplo
