#pragma once

#include <functional>
#include <map>
#include <string>

#include "broker/messages.h"

namespace keplo::broker {

/// Turns keys and the events that they raise into stages to publish: for each event one press, a hold for
/// each further signal of the key, and one release. Keys may be pressed in several rooms at the same time.
class KeyStages {
 public:
  /// @param report called for each stage, with the current time set
  explicit KeyStages(std::function<void(const KeyEvent&)> report) : report_(std::move(report)) {}

  // Called for a key at a place, before the events that it raises.
  /// @param zone of the place, reported for events that are valid in every zone; 0 if it has none
  void Pressed(int place, int zone);
  /// @param count signals of the press so far
  void Held(int place, int count);
  void Released(int place, int count);
  /// Called for an event of the key that was pressed or held last. Without such a key, only a press is
  /// reported.
  void Raised(KeyEvent event);

 private:
  struct Press {
    int Zone = 0;
    int Count = 1;
    std::map<std::string, KeyEvent> Events;  // by EventID
  };

  void Report(KeyEvent& event, KeyStage stage, int count) const;

  const std::function<void(const KeyEvent&)> report_;
  std::map<int, Press> presses_;  // by place
  int last_ = 0;                  // place of the key that was pressed or held last
};

}  // namespace keplo::broker
