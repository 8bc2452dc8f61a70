#pragma once

#include <string>
#include <string_view>

#include "config/cfg_store.h"

namespace keplo {

/// Describes, for a person, the first fault of a loaded configuration: the file, what is missing and the line
/// after which it was expected, or the line that does not end in CR LF; then what to do.
/// @return one line without a line end; empty if there is no fault
std::string CheckConfig(const CfgStore& store);

/// Like CheckConfig, but only for faults that rule out any change. Two sections of one name, for example,
/// only prevent deleting one of them.
std::string DamageOf(const CfgStore& store);

/// Whether all sections up to [END] are complete.
bool HasWholeSections(std::string_view text);

}  // namespace keplo
