#pragma once

#include <cstdint>
#include <string>

namespace keplo {

/// An event of the user's event map: binds a learned command to something that the host knows by an ID.
struct clsKeploEvent {
  std::string EventID;  // assigned by the host
  std::string EventName;
  std::string EventDescription;
  std::string IRCommand;  // the command reference, "protocol&command"
  bool Enabled = false;
  std::int16_t Zone = 0;  // 1 to 8, or 0 for any zone

  bool operator==(const clsKeploEvent&) const = default;
};

}  // namespace keplo
