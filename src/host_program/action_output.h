#pragma once

#include <map>

#include "host_program/event_actions.h"
#include "host_program/event_book.h"
#include "host_program/event_output.h"
#include "host_program/press_actions.h"

namespace keplo::host {

/// Runs the actions of the book of events when events are raised, and when the key of an event is released.
class ActionOutput final : public EventOutput {
 public:
  ActionOutput(EventBook& book, EventActions& actions, const HostLog& log)
      : book_(book), actions_(actions), log_(log) {}

  /// Creates the keyboard if any event presses keys.
  void Prepare();
  /// Reads the book again, and logs the result.
  void Reload();

  void EventRaised(const RaisedEvent& event) override;
  void KeyChanged(PressStage stage, const HeardKey& key) override;

 private:
  void ReadBookIfChanged();
  void ReleaseKey(int place);

  EventBook& book_;
  EventActions& actions_;
  const HostLog& log_;
  std::map<int, PressActions> presses_;  // of the keys that are pressed, by place
  int last_ = 0;                         // place of the last key that was pressed or held
};

}  // namespace keplo::host
