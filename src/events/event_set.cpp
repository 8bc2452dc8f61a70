#include "events/event_set.h"

#include <algorithm>
#include <utility>

#include "events/failure_numbers.h"
#include "failure.h"

namespace keplo {

void EventSet::Add(std::string_view key, std::shared_ptr<clsKeploEvent> event) {
  if (Find(key) != nullptr) {
    throw Failure(kKeyTaken,
                  "The event map already holds an event with the key " + std::string(key) +
                      ". Every event needs an EventID of its own: where the event table has one twice, "
                      "delete a row with a database tool.");
  }
  members_.push_back(event);
  try {
    byKey_.emplace(key, std::move(event));
  } catch (...) {
    members_.pop_back();
    throw;
  }
}

bool EventSet::Remove(std::string_view key) {
  const auto found = byKey_.find(key);
  if (found == byKey_.end()) return false;
  members_.erase(std::find(members_.begin(), members_.end(), found->second));
  byKey_.erase(found);
  return true;
}

std::shared_ptr<clsKeploEvent> EventSet::Find(std::string_view key) const {
  const auto found = byKey_.find(key);
  return found == byKey_.end() ? nullptr : found->second;
}

}  // namespace keplo
