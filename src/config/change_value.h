#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"

namespace keplo {

/// Replaces the value at a position, in memory only.
///
/// A blank at the position stays; if there is none, it is inserted. The new value is trimmed.
/// @param position just after the = of a key, as FindNoCase returns it
/// @return false, with nothing changed, if the position is 0 or its line does not end in a CR
/// @throws Failure if the text would exceed its limit; nothing is changed then
bool ReplaceValueAt(CfgStore& store, int position, std::string_view value);

/// The text with another value at a position, as ReplaceValueAt writes it.
/// @return empty if the position is 0 or its line does not end in a CR
std::optional<std::string> WithValueAt(const std::string& text, int position, std::string_view value);

/// The text with another value for a key of [General].
/// @param key without its =
/// @return empty if section, key or line end is missing
std::optional<std::string> WithGeneralValue(const std::string& text, std::string_view key,
                                            std::string_view value);

/// Changes the value of a key of [General] and saves.
/// @param key without its =
/// @return false, with nothing changed, if section, key or line end is missing
/// @throws Failure if the save fails; CfgText then matches the file, see ReplaceAndSave
bool SetGeneralValue(CfgStore& store, std::string_view key, std::string_view value);

}  // namespace keplo
