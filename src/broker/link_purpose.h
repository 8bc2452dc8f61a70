#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace keplo::broker {

/// What a broker connection is used for.
struct LinkPurpose {
  std::string ClientId;             // must be unique on the broker
  std::vector<std::string> Topics;  // to subscribe to; may include + and #
  bool SpeaksForDevice = true;      // announces the device, and whether it is online
  std::string WatchFor;             // if not empty: only waits for this payload, and ends then
  std::size_t MostIncoming = 64;    // messages that may wait to be taken
  std::string Up;                   // reported when the connection is established
  std::string WhileAway;            // what does not work without it, for a report
};

}  // namespace keplo::broker
