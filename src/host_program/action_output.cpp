#include "host_program/action_output.h"

#include "failure.h"
#include "program/local_time.h"

namespace keplo::host {

namespace {

/// The text of a failure to read the book, and what it means.
std::string WithConsequence(const Failure& failure) {
  std::string text = failure.what();
  if (!text.ends_with('.')) text += '.';
  return text + " Until then each event does what it did.";
}

}  // namespace

void ActionOutput::Prepare() {
  if (book_.PressesKeys()) actions_.PrepareKeys();
}

void ActionOutput::Reload() {
  try {
    book_.Read();
    Prepare();
    log_.Write(LogLevel::Notice,
               "What each event does was read again; changes of keplo.cfg and of the event map are taken in "
               "as they come.");
  } catch (const Failure& failure) {
    log_.Write(LogLevel::Warning, WithConsequence(failure));
  }
}

void ActionOutput::ReadBookIfChanged() {
  try {
    book_.ReadIfChanged();
  } catch (const Failure& failure) {
    log_.Write(LogLevel::Warning, WithConsequence(failure));
  }
}

void ActionOutput::EventRaised(const RaisedEvent& event) {
  ReadBookIfChanged();
  const bool isFromKey = presses_.count(last_) > 0;
  actions_.Do(presses_[last_].DueAt(event, book_.ActionsOf(event.EventID)), event, last_);
  if (isFromKey) return;
  // Without IKeySource each event is a press by itself, which is never released.
  presses_.erase(last_);
  actions_.ReleaseKeys(last_);
}

void ActionOutput::KeyChanged(PressStage stage, const HeardKey& key) {
  if (stage == PressStage::Released) return ReleaseKey(key.Place);
  last_ = key.Place;
  if (stage == PressStage::Pressed) presses_[key.Place].Begin();
  if (stage == PressStage::Held) presses_[key.Place].Hold(key.HeldMs);
}

void ActionOutput::ReleaseKey(int place) {
  actions_.ReleaseKeys(place);
  for (RaisedEvent& event : presses_[place].End()) {
    event.Time = LocalTime();
    actions_.Do(PressActions::AtRelease(book_.ActionsOf(event.EventID)), event, place);
  }
  presses_.erase(place);
}

}  // namespace keplo::host
