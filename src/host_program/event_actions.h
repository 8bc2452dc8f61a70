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

/// Does what an event asks for. There are three kinds of action:
///
///     {"kind": "run", "program": "lamp", "arguments": ["on"]}    starts a program, without a shell
///     {"kind": "shell", "command": "lamp on >> log"}             hands a line to /bin/sh
///     {"kind": "key", "key": "KEY_VOLUMEUP"}                     presses a key until it is released
///
/// Programs find the event in their environment: KEPLO_EVENT_ID, KEPLO_EVENT_NAME, KEPLO_EVENT_DESCRIPTION,
/// KEPLO_COMMAND, KEPLO_ZONE and KEPLO_TIME. Their standard input is empty, their output goes to the host's
/// standard error, line by line. None is waited for, and what they leave running on its own is logged too.
class EventActions {
 public:
  /// Programs that may run at the same time; a key that is held must not fill the machine with hung ones.
  static constexpr std::size_t kMostPrograms = 32;
  /// Programs that may have ended but left others behind that hold their output, as daemons do.
  static constexpr std::size_t kMostLeftOpen = 256;

  explicit EventActions(const HostLog& log);
  /// Ends the programs that still run.
  ~EventActions();

  /// Does the actions of an event in order; one that cannot be done is logged and the next follows.
  /// @param place of the key that raised the event, for ReleaseKeys
  void Do(const nlohmann::json& actions, const RaisedEvent& event, int place);

  /// Gets ready for an event that presses a key.
  void PrepareKeys() { keyboard_.PlugIn(); }
  /// Lets the keys go that events of this place hold and of no other.
  void ReleaseKeys(int place) { keyboard_.Release(place); }

  bool AnyRuns() const { return !programs_.empty(); }
  /// Asks the programs that run to end.
  void Terminate();
  /// Ends the programs that still run, and logs each.
  void Kill();
  /// Runs when the last program has ended.
  std::function<void()> AllEnded;

 private:
  using Kind = std::function<void(const nlohmann::json& action, const RaisedEvent& event, int place)>;

  /// What is in the way of one more program; empty if nothing is.
  std::string InTheWay();
  void Start(const ProgramCall& call, const RaisedEvent& event);
  void Drop(ActionProgram* program);

  const HostLog& log_;
  Keyboard keyboard_;
  std::map<std::string, Kind> kinds_;
  std::vector<std::unique_ptr<ActionProgram>> programs_;
  std::vector<std::unique_ptr<LoggedOutput>> leftOpen_;  // of programs that have ended
};

}  // namespace keplo::host
