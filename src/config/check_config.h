#pragma once

#include <string>
#include <string_view>

#include "config/cfg_store.h"

namespace keplo {

/// Tells what is wrong with a loaded configuration, for a person: the file, the first thing that was not
/// found and the line after which it was looked for, or the line that does not end in CR LF; then what to
/// do.
/// @return one line without an end; empty if the configuration is whole
std::string CheckConfig(const CfgStore& store);

/// The same of what no change can be made beside. Two sections of one name are only in the way of what
/// deletes one of them.
std::string DamageOf(const CfgStore& store);

/// Whether all sections of a text are whole, up to its [END].
bool HasWholeSections(std::string_view text);

}  // namespace keplo
