#include "events/event_set.h"

#include <algorithm>
#include <utility>

#include "events/failure_numbers.h"
#include "failure.h"

namespace keplo {

void EventSet::Add(std::string_view key, std::shared_ptr<clsKeploEvent> event) {
  if (Find(key) != nullptr) {
    throw Failure(kKeyTaken, "The event map already holds an event with the key " + std::string(key) +
                                 ". Every event needs an EventID of its own.");
  }
  members_.push_back(std::move(event));
  keys_.emplace_back(key);
}

bool EventSet::Remove(std::string_view key) {
  const auto found = std::find(keys_.begin(), keys_.end(), key);
  if (found == keys_.end()) return false;
  members_.erase(members_.begin() + (found - keys_.begin()));
  keys_.erase(found);
  return true;
}

std::shared_ptr<clsKeploEvent> EventSet::Find(std::string_view key) const {
  const auto found = std::find(keys_.begin(), keys_.end(), key);
  return found == keys_.end() ? nullptr : members_[static_cast<std::size_t>(found - keys_.begin())];
}

}  // namespace keplo
