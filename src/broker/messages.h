#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::broker {

/// The event types of an event entity.
enum class KeyStage { Press, Hold, Release };

/// One stage of a key press that has raised an event of the map.
struct KeyEvent {
  KeyStage Stage = KeyStage::Press;
  std::string EventID, Name, Command;
  int Zone = 0;      // of the event, or of the receiver for an event that is valid in every zone
  std::string Time;  // local time, ISO 8601
  int Count = 1;     // signals of this press so far
};

/// {"event_type","name","command","zone","time","count"}
std::string KeyMessage(const KeyEvent& event);

/// A received signal, known or not.
struct HeardSignal {
  std::vector<std::int32_t> Timings;  // microseconds, marks positive, spaces negative
  std::optional<int> Modulation;      // carrier, Hz; nothing if the receiver demodulates
  std::string Protocol, Code;         // empty if no code was read
  std::string Command;                // empty if the signal is not learned
  int Zone = 0;
  std::string Time;
};

/// {"timings","modulation","protocol","code","command","zone","time"}; unknown values are null
std::string SignalMessage(const HeardSignal& signal);

/// A request to send lengths or a learned command.
struct SendRequest {
  std::vector<std::int32_t> Timings;  // microseconds, mark first; marks positive, spaces negative
  int Modulation = 38000;             // Hz
  std::string Command;                // protocol&command; used if there are no timings
};

/// Limits of a request. The line cannot receive while it sends.
inline constexpr std::int64_t kLongestRequestUs = 2'000'000;
inline constexpr std::size_t kMostRequestBytes = 65536;

/// @throws Failure with what is wrong
SendRequest ParseSendRequest(std::string_view payload);

}  // namespace keplo::broker
