#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::broker {

/// What has become of a key, as an event entity tells it.
enum class KeyStage { Press, Hold, Release };

/// One stage of a key press that an event of the map is bound to.
struct KeyEvent {
  KeyStage Stage = KeyStage::Press;
  std::string EventID, Name, Command;
  int Zone = 0;      // of the event, or of the receiver for an event of every zone
  std::string Time;  // local time, ISO 8601
  int Count = 1;     // captures of this press so far
};

/// {"event_type","name","command","zone","time","count"}
std::string KeyMessage(const KeyEvent& event);

/// A signal that was heard, known or not.
struct HeardSignal {
  std::vector<std::int32_t> Timings;  // microseconds, marks positive, spaces negative
  std::optional<int> Modulation;      // carrier, Hz; none where the receiver has taken it off
  std::string Protocol, Code;         // empty where no code was read
  std::string Command;                // empty where none is learned
  int Zone = 0;
  std::string Time;
};

/// {"timings","modulation","protocol","code","command","zone","time"}; null for what is not known
std::string SignalMessage(const HeardSignal& signal);

/// What the broker asks to send: lengths, or a learned command.
struct SendRequest {
  std::vector<std::int32_t> Timings;  // microseconds, mark first, signs as they alternate
  int Modulation = 38000;             // Hz
  std::string Command;                // protocol&command, where no lengths are given
};

/// Limits of what is sent for the broker: longer signals would keep the line deaf.
inline constexpr std::int64_t kLongestRequestUs = 2'000'000;
inline constexpr std::size_t kMostRequestBytes = 65536;

/// @throws Failure with what is wrong and what was expected
SendRequest ParseSendRequest(std::string_view payload);

}  // namespace keplo::broker
