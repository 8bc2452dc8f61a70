#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace keplo {

/// An object as a line of output. Bytes that are not valid UTF-8, which names in files may contain, are
/// replaced, so that the line is always valid JSON.
std::string JsonLine(const nlohmann::ordered_json& json);

}  // namespace keplo
