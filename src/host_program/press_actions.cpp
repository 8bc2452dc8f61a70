#include "host_program/press_actions.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

#include "host_program/key_name.h"

namespace keplo::host {

namespace {

constexpr const char* kOn = "on";
constexpr const char* kAfter = "after_ms";
constexpr std::string_view kPress = "press", kEvery = "every", kHold = "hold", kRelease = "release";
constexpr std::array kMoments = {kPress, kEvery, kHold, kRelease};
constexpr int kUsualHold = 500;      // milliseconds
constexpr int kLongestHold = 60000;  // milliseconds

/// When an action is due. Running an action that is not an object will report that.
std::string MomentOf(const nlohmann::json& action) {
  return action.is_object() ? action.value(kOn, std::string(kEvery)) : std::string(kEvery);
}

std::string MistakeInKey(const nlohmann::json& action) {
  const nlohmann::json key = action.value("key", nlohmann::json());
  if (!key.is_string() || !KeyCodeOf(key.get<std::string>())) {
    return "\"key\" is " + key.dump() + "; expected is a name of the kernel's, such as \"KEY_VOLUMEUP\"";
  }
  if (!action.contains(kOn) && !action.contains(kAfter)) return {};
  return R"("on" and "after_ms" do not go with "kind": "key", whose key is down from press to release)";
}

std::string MistakeIn(const nlohmann::json& action) {
  if (!action.is_object()) return {};
  const auto on = action.find(kOn);
  const bool known = on == action.end() ||
                     (on->is_string() && std::find(kMoments.begin(), kMoments.end(),
                                                   on->get_ref<const std::string&>()) != kMoments.end());
  if (!known) {
    return "\"on\" is " + on->dump() + "; expected is \"press\", \"every\", \"hold\" or \"release\"";
  }
  if (IsKeyAction(action)) return MistakeInKey(action);
  const auto after = action.find(kAfter);
  if (after == action.end()) return {};
  if (MomentOf(action) != kHold) return R"("after_ms" stands without "on": "hold", to which it belongs)";
  const bool fits = after->is_number_integer() && *after >= 0 && *after <= kLongestHold;
  return fits ? std::string()
              : "\"after_ms\" is " + after->dump() +
                    "; expected is a whole number of milliseconds from 0 to " + std::to_string(kLongestHold);
}

}  // namespace

bool IsKeyAction(const nlohmann::json& action) {
  return action.is_object() && action.value("kind", nlohmann::json()) == "key";
}

void PressActions::Begin() {
  held_ = false;
  heldMs_ = 0;
  raised_.clear();
}

void PressActions::Hold(int heldMs) {
  held_ = true;
  heldMs_ = heldMs;
}

std::vector<RaisedEvent> PressActions::End() {
  std::vector<RaisedEvent> events;
  for (auto& [eventID, raised] : raised_) events.push_back(std::move(raised.Event));
  Begin();
  return events;
}

nlohmann::json PressActions::DueAt(const RaisedEvent& event, const nlohmann::json& actions) {
  Raised& raised = raised_[event.EventID];
  raised.Event = event;
  nlohmann::json due = nlohmann::json::array();
  for (std::size_t place = 0; place < actions.size(); ++place) {
    const nlohmann::json& action = actions[place];
    const std::string moment = MomentOf(action);
    const bool longHeld = moment == kHold && held_ && heldMs_ >= action.value(kAfter, kUsualHold);
    const bool isDue =
        moment == kEvery || (moment == kPress && !held_) || (longHeld && raised.Done.insert(place).second);
    if (isDue) due.push_back(action);
  }
  return due;
}

nlohmann::json PressActions::AtRelease(const nlohmann::json& actions) {
  nlohmann::json due = nlohmann::json::array();
  std::copy_if(actions.begin(), actions.end(), std::back_inserter(due),
               [](const nlohmann::json& action) { return MomentOf(action) == kRelease; });
  return due;
}

std::string MistakeInActions(const nlohmann::json& events) {
  for (const auto& [eventID, event] : events.items()) {
    const nlohmann::json actions = event.is_object() ? event.value("actions", nlohmann::json()) : nullptr;
    if (!actions.is_array()) continue;
    for (std::size_t place = 0; place < actions.size(); ++place) {
      const std::string mistake = MistakeIn(actions[place]);
      if (mistake.empty()) continue;
      return std::string("action ").append(std::to_string(place + 1)).append(" of event ").append(eventID) +
             ": " + mistake;
    }
  }
  return {};
}

}  // namespace keplo::host
