#pragma once

#include <string>

namespace keplo {

/// An input event, for output.
struct RaisedEvent {
  std::string Time;  // local time, ISO 8601
  std::string EventID;
  std::string EventName;
  std::string EventDescription;
  std::string Command;  // protocol&command
  int Zone = 0;
};

/// A line of text, without a line end.
std::string EventLine(const RaisedEvent& event);

/// A JSON object, without a line end.
std::string EventJsonLine(const RaisedEvent& event);

}  // namespace keplo
