#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "host_program/host_log.h"

namespace keplo::host {

/// Selects which actions of an event are due when its key is pressed, held and released. An action specifies
/// it with
///
///     "on": "press"                     at the first signal of a press
///     "on": "every"                     at each signal; this is the default
///     "on": "hold", "after_ms": 1000    once per press, after this time; the default is 500
///     "on": "release"                   when the key is released
///
/// If the plug-in does not report presses, each event is a press by itself, which is never held or released.
class PressActions {
 public:
  /// A key was pressed; its first events follow.
  void Begin();
  /// The key is still held; further events follow.
  /// @param heldMs since it was pressed
  void Hold(int heldMs);
  /// The key was released.
  /// @return the events that it has raised
  std::vector<RaisedEvent> End();

  /// The actions that are due for an event of the current signal, in their order.
  nlohmann::json DueAt(const RaisedEvent& event, const nlohmann::json& actions);
  /// The actions that are due when the key is released.
  static nlohmann::json AtRelease(const nlohmann::json& actions);

 private:
  struct Raised {
    RaisedEvent Event;
    std::set<std::size_t> Done;  // indexes of hold actions that have run
  };

  bool held_ = false;
  int heldMs_ = 0;
  std::map<std::string, Raised> raised_;  // events of this press by EventID
};

/// Whether an action presses a key.
bool IsKeyAction(const nlohmann::json& action);

/// What is wrong with "on", "after_ms" or "key" of the actions in a book, as a sentence without a full stop;
/// empty if there is no mistake.
/// @param events the object "events" of the book
std::string MistakeInActions(const nlohmann::json& events);

}  // namespace keplo::host
