#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/analysis_choice.h"

namespace keplo {

/// A learned command and its section.
struct FoundCommand {
  std::string Protocol, Command;

  /// "PROTOCOL&COMMAND"
  std::string Reference() const { return Protocol + "&" + Command; }
};

/// Finds the first command of a text whose code begins with the given digits or, for a code read by the
/// second look, equals them: it reads SONY codes of 12, 15 and 20 digits, one of which may begin with
/// another.
/// @param code digits without the leading G
/// @param limit a match that ends at or before this position does not count; it is in the head of the file
/// @param readBy the analysis that the code comes from
/// @return names as the text spells them, either of which may be empty; the section may be [General]
std::optional<FoundCommand> FindCommand(std::string_view text, std::string_view code, int limit,
                                        Analysis readBy = Analysis::First);

/// Sets CurProtocol and CurCommand to the command of a code. A match in [General] sets them too, but does not
/// count as found.
/// @param code digits without the leading G
/// @param protoKind 2 for RC5, where the toggle digit does not count
/// @param readBy as with FindCommand
/// @return whether a protocol has the command
bool LookupCommand(CfgStore& store, std::string_view code, std::int16_t protoKind,
                   Analysis readBy = Analysis::First);

}  // namespace keplo
