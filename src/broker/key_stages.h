#pragma once

#include <functional>
#include <map>
#include <string>

#include "broker/messages.h"

namespace keplo::broker {

/// Makes of keys and of the events that they raise what a broker is told: for each event one press, a hold
/// with each further signal of the key, and one release. Rooms press theirs at the same time.
class KeyStages {
 public:
  /// @param tell gets each stage, with the time that it has now
  explicit KeyStages(std::function<void(const KeyEvent&)> tell) : tell_(std::move(tell)) {}

  // A key at a place; the events that it raises follow.
  /// @param zone of the place, which events of every zone tell; 0 if it has none
  void Pressed(int place, int zone);
  /// @param count signals of the press so far
  void Held(int place, int count);
  void Released(int place, int count);
  /// An event of the key that was pressed or held last. Without one it is a press of its own, which is
  /// neither held nor let go.
  void Raised(KeyEvent event);

 private:
  struct Press {
    int Zone = 0;
    int Count = 1;
    std::map<std::string, KeyEvent> Events;  // by EventID
  };

  void Tell(KeyEvent& event, KeyStage stage, int count) const;

  const std::function<void(const KeyEvent&)> tell_;
  std::map<int, Press> presses_;  // by place
  int last_ = 0;                  // place of the key that was pressed or held last
};

}  // namespace keplo::broker
