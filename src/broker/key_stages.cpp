#include "broker/key_stages.h"

#include <utility>

#include "program/local_time.h"

namespace keplo::broker {

void KeyStages::Report(KeyEvent& event, KeyStage stage, int count) const {
  event.Stage = stage;
  event.Time = LocalTime();
  event.Count = count;
  report_(event);
}

void KeyStages::Pressed(int place, int zone) {
  last_ = place;
  presses_[place] = {zone, 1, {}};
}

void KeyStages::Held(int place, int count) {
  last_ = place;
  Press& press = presses_[place];
  press.Count = count;
  for (auto& [eventID, event] : press.Events) Report(event, KeyStage::Hold, count);
}

void KeyStages::Released(int place, int count) {
  const auto press = presses_.extract(place);
  if (press.empty()) return;
  for (auto& [eventID, event] : press.mapped().Events) Report(event, KeyStage::Release, count);
}

void KeyStages::Raised(KeyEvent event) {
  const auto press = presses_.find(last_);
  if (press == presses_.end()) return Report(event, KeyStage::Press, 1);
  if (event.Zone == 0) event.Zone = press->second.Zone;
  const auto [place, isNew] = press->second.Events.try_emplace(event.EventID, event);
  if (isNew) Report(place->second, KeyStage::Press, press->second.Count);
}

}  // namespace keplo::broker
