#pragma once

#include <string>

namespace keplo {

/// An input event as a program tells it.
struct RaisedEvent {
  std::string Time;  // local time, ISO 8601
  std::string EventID;
  std::string EventName;
  std::string EventDescription;
  std::string Command;  // protocol&command
  int Zone = 0;
};

/// The line of an event for a person, without a line end.
std::string EventLine(const RaisedEvent& event);

/// The same as a JSON object.
std::string EventJsonLine(const RaisedEvent& event);

}  // namespace keplo
