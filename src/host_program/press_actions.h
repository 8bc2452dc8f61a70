#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "host_program/host_log.h"

namespace keplo::host {

/// Chooses which actions of an event are due as its key is pressed, held and let go. An action says it by
///
///     "on": "press"                     at the first signal of a press
///     "on": "every"                     at each signal, as without the word
///     "on": "hold", "after_ms": 1000    once in a press that lasts for so long; 500 without the number
///     "on": "release"                   when the key is let go
///
/// A plug-in that tells no presses makes each event one of its own, which is never held or let go.
class PressActions {
 public:
  /// A key was pressed, and its first events follow.
  void Begin();
  /// The key is held on, and further events of it follow.
  /// @param heldMs since it was pressed
  void GoOn(int heldMs);
  /// The key was let go.
  /// @return the events that it has raised
  std::vector<RaisedEvent> End();

  /// The actions that are due at an event of the present signal, in their order.
  nlohmann::json DueAt(const RaisedEvent& event, const nlohmann::json& actions);
  /// Those that are due when the key is let go.
  static nlohmann::json AtRelease(const nlohmann::json& actions);

 private:
  struct Raised {
    RaisedEvent Event;
    std::set<std::size_t> Done;  // hold actions, by their places
  };

  bool held_ = false;
  int heldMs_ = 0;
  std::map<std::string, Raised> raised_;  // by EventID, in this press
};

/// Whether an action presses a key.
bool IsKeyAction(const nlohmann::json& action);

/// What is wrong with the words "on", "after_ms" and "key" of the actions of a book, in a sentence without
/// its end; empty if nothing is.
/// @param events the object "events" of the book
std::string MistakeInActions(const nlohmann::json& events);

}  // namespace keplo::host
