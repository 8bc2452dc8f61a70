#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "events/cls_keplo_event.h"

namespace keplo {

/// Events in order of insertion, each under a key of its own. Holds the very objects that it is given.
class EventSet {
 public:
  using Members = std::vector<std::shared_ptr<clsKeploEvent>>;

  /// @throws Failure for a key that is taken
  void Add(std::string_view key, std::shared_ptr<clsKeploEvent> event);
  /// @return false if there is no such key
  bool Remove(std::string_view key);
  /// @return none if there is no such key
  std::shared_ptr<clsKeploEvent> Find(std::string_view key) const;
  /// In order of insertion.
  const Members& All() const { return members_; }

 private:
  std::vector<std::string> keys_;  // of the members, in the same order
  Members members_;
};

}  // namespace keplo
