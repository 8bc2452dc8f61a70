#include "program/raised_event.h"

#include <nlohmann/json.hpp>

#include "program/json_line.h"
#include "program/printable.h"

namespace keplo {

std::string EventLine(const RaisedEvent& event) {
  return Printable(event.Time + "  event " + event.EventID + "  " + event.EventName + "  " + event.Command +
                   "  zone " + std::to_string(event.Zone));
}

std::string EventJsonLine(const RaisedEvent& event) {
  nlohmann::ordered_json line;
  line["time"] = event.Time;
  line["event_id"] = event.EventID;
  line["event_name"] = event.EventName;
  line["command"] = event.Command;
  line["zone"] = event.Zone;
  return JsonLine(line);
}

}  // namespace keplo
