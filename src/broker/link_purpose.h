#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace keplo::broker {

/// What a connection to a broker is for.
struct LinkPurpose {
  std::string ClientId;             // its name on the broker; no two connections may have the same
  std::vector<std::string> Topics;  // whose messages are taken in; may have + and #
  bool SpeaksForDevice = true;      // tells the device and whether it is online
  std::string WatchFor;             // ends when a topic says this, and tells nothing; empty for all others
  std::size_t MostIncoming = 64;    // messages that wait to be taken
  std::string Up;                   // what its user is told when it is there
  std::string WhileAway;            // what cannot be done without it
};

}  // namespace keplo::broker
