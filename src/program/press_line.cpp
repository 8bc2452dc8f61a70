#include "program/press_line.h"

#include <nlohmann/json.hpp>

#include "program/json_line.h"
#include "program/local_time.h"
#include "program/printable.h"

namespace keplo {

std::string TextOf(const PressLine& line, bool json) {
  if (!json) {
    const std::string key = line.Command.empty() ? "code " + line.Code : line.Command;
    return Printable(LocalTime() + "  " + std::string(line.What) + "  " + key + "  signals " +
                     std::to_string(line.Count) + "  held " + std::to_string(line.HeldMs) + " ms");
  }
  nlohmann::ordered_json object;
  object["time"] = LocalTime();
  object["press"] = line.What;
  object["command"] = line.Command;
  object["code"] = line.Code;
  object["count"] = line.Count;
  object["held_ms"] = line.HeldMs;
  return JsonLine(object);
}

}  // namespace keplo
