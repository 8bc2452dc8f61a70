#pragma once

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host_program/action_program.h"
#include "host_program/host_log.h"
#include "host_program/keyboard.h"

namespace keplo::host {

/// Runs the actions of events. There are three kinds of action:
///
///     {"kind": "run", "program": "lamp", "arguments": ["on"]}    starts a program, without a shell
///     {"kind": "shell", "command": "lamp on >> log"}             passes a line to /bin/sh
///     {"kind": "key", "key": "KEY_VOLUMEUP"}                     presses a key until it is released
///
/// Programs get the event in environment variables: KEPLO_EVENT_ID, KEPLO_EVENT_NAME,
/// KEPLO_EVENT_DESCRIPTION, KEPLO_COMMAND, KEPLO_ZONE and KEPLO_TIME. Their standard input is empty; their
/// output goes to the host's log line by line, as does that of processes that they leave behind. The host
/// does not wait for them.
class EventActions {
 public:
  /// The number of programs that may run at the same time, so that a held key does not overload the machine.
  static constexpr std::size_t kMostPrograms = 32;
  /// The number of programs that may have left behind others that hold their output, as daemons do.
  static constexpr std::size_t kMostLeftOpen = 256;

  explicit EventActions(const HostLog& log);
  /// Kills programs that are still running.
  ~EventActions();

  /// Runs the actions of an event in order. Failures are logged, and the next action follows.
  /// @param place of the key that raised the event, for ReleaseKeys
  void Do(const nlohmann::json& actions, const RaisedEvent& event, int place);

  /// Creates the keyboard in advance.
  void PrepareKeys() { keyboard_.PlugIn(); }
  /// Releases the keys that are held only by events of this place.
  void ReleaseKeys(int place) { keyboard_.Release(place); }

  bool AnyRuns() const { return !programs_.empty(); }
  /// Asks running programs to end.
  void Terminate();
  /// Kills and logs programs that are still running.
  void Kill();
  /// Runs when the last program has ended.
  std::function<void()> AllEnded;

 private:
  using Kind = std::function<void(const nlohmann::json& action, const RaisedEvent& event, int place)>;

  /// Why no more programs can be started; empty if they can.
  std::string WhyNoMorePrograms();
  void Start(const ProgramCall& call, const RaisedEvent& event);
  void Drop(ActionProgram* program);

  const HostLog& log_;
  Keyboard keyboard_;
  std::map<std::string, Kind> kinds_;
  std::vector<std::unique_ptr<ActionProgram>> programs_;
  std::vector<std::unique_ptr<LoggedOutput>> leftOpen_;  // outputs of programs that have ended
};

}  // namespace keplo::host
