#pragma once

#include <map>

#include "host_program/event_actions.h"
#include "host_program/event_book.h"
#include "host_program/event_output.h"
#include "host_program/press_actions.h"

namespace keplo::host {

/// Does what the book of events asks for at each event, and when the key of an event is let go.
class ActionOutput final : public EventOutput {
 public:
  ActionOutput(EventBook& book, EventActions& actions, const HostLog& log)
      : book_(book), actions_(actions), log_(log) {}

  /// Gets ready for the keys that events press.
  void Prepare();
  /// Reads the book again, and tells what became of it.
  void ReadAgain();

  void EventRaised(const RaisedEvent& event) override;
  void KeyChanged(PressStage stage, const HeardKey& key) override;

 private:
  void ReadBookIfChanged();
  void LetGo(int place);

  EventBook& book_;
  EventActions& actions_;
  const HostLog& log_;
  std::map<int, PressActions> presses_;  // of the keys that are down, by place
  int last_ = 0;                         // place of the key that was pressed or held last
};

}  // namespace keplo::host
