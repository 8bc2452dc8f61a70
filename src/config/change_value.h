#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"

namespace keplo {

/// Puts a value in the place of the one at a position, in memory only.
///
/// The blank that stands at the position stays; if there is none, it is written in. The new value is trimmed.
/// @param position just after the = of a key, as FindNoCase gives it
/// @return false, with nothing changed, if the position is 0 or its line does not end in a CR
/// @throws Failure if the text would grow beyond its limit; nothing is changed then
bool ReplaceValueAt(CfgStore& store, int position, std::string_view value);

/// A text with another value at a position, as ReplaceValueAt writes it.
/// @return empty if no value can stand there
std::optional<std::string> WithValueAt(const std::string& text, int position, std::string_view value);

/// A text with another value of a key of [General].
/// @param key without its =
/// @return empty if section, key or line end is missing
std::optional<std::string> WithGeneralValue(const std::string& text, std::string_view key,
                                            std::string_view value);

/// Changes a key of [General] and saves.
/// @param key without its =
/// @return false, with nothing changed, if section, key or line end is missing
/// @throws Failure if the save fails; CfgText then agrees with the file, see ReplaceAndSave
bool SetGeneralValue(CfgStore& store, std::string_view key, std::string_view value);

}  // namespace keplo
