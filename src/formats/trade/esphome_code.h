#pragma once

#include <map>
#include <string>
#include <string_view>

#include "formats/remote.h"

namespace keplo::trade {

/// The fields of an action or of a line of the log, by name.
using EsphomeFields = std::map<std::string, std::string, std::less<>>;

/// Gives the key what a protocol of the receiver component makes of its fields; raw and Pronto are not among
/// them.
/// @return empty, or why there is nothing
std::string TakeEsphome(std::string_view protocol, const EsphomeFields& fields, RemoteKey& key);

/// The action of a key and its fields as lines of YAML.
std::string EsphomeAction(const RemoteKey& key, std::string_view indent);

}  // namespace keplo::trade
