#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace keplo::trade {

using Json = nlohmann::ordered_json;

/// Parses JSON of a bounded depth.
/// @param why what is wrong and where; unchanged if nothing is
/// @return a discarded value if it is none
Json ParseJson(std::string_view text, std::string& why);

/// As JSON writes a text.
std::string JsonText(std::string_view text);

/// A value as an error text repeats it: short, and between quotes.
std::string Shown(const Json& value);

/// A text whose bytes that are no UTF-8 are replaced.
std::string Utf8Text(std::string_view text);

}  // namespace keplo::trade
