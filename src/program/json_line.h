#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace keplo {

/// An object as one line of output. Names out of files and tables may hold any bytes; what is no UTF-8 is
/// replaced, so that a line is always valid JSON.
std::string JsonLine(const nlohmann::ordered_json& json);

}  // namespace keplo
