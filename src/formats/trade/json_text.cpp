#include "formats/trade/json_text.h"

#include <algorithm>

#include "formats/trade/reading.h"

namespace keplo::trade {

namespace {

constexpr int kDeepest = 64;  // brackets; files of the trade have ten

/// Brackets outside of texts, at most open at a time.
bool IsTooDeep(std::string_view text) {
  int depth = 0;
  bool inText = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inText) {
      if (c == '\\') ++i;
      if (c == '"') inText = false;
    } else if (c == '"') {
      inText = true;
    } else if (c == '[' || c == '{') {
      if (++depth > kDeepest) return true;
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return false;
}

}  // namespace

Json ParseJson(std::string_view text, std::string& why) {
  if (IsTooDeep(text)) {
    why = "more than " + std::to_string(kDeepest) + " brackets within each other";
    return Json(nlohmann::detail::value_t::discarded);
  }
  try {
    return Json::parse(text.begin(), text.end());
  } catch (const nlohmann::json::parse_error& error) {
    const std::size_t place = std::min(text.size(), error.byte > 0 ? error.byte - 1 : 0);
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n');
    why = "no JSON from line " + std::to_string(line) + " on";
  } catch (const nlohmann::json::exception&) {
    why = "no JSON";
  }
  return Json(nlohmann::detail::value_t::discarded);
}

std::string JsonText(std::string_view text) {
  return Json(std::string(text)).dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace);
}

std::string Shown(const Json& value) {
  return Quoted(value.is_string() ? value.get_ref<const std::string&>() : value.dump());
}

std::string Utf8Text(std::string_view text) { return Json::parse(JsonText(text)).get<std::string>(); }

}  // namespace keplo::trade
