#include "program/json_line.h"

#include <nlohmann/json.hpp>

#include "program/printable.h"

namespace keplo {

std::string JsonLine(const nlohmann::ordered_json& json) {
  return PrintableJson(json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

}  // namespace keplo
