#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "events/cls_keplo_event.h"

namespace keplo {

/// Events in order of insertion, with unique keys. Shares the objects with callers.
class EventSet {
 public:
  using Members = std::vector<std::shared_ptr<clsKeploEvent>>;

  /// @throws Failure if the key is taken; the set is then unchanged
  void Add(std::string_view key, std::shared_ptr<clsKeploEvent> event);
  /// @return false if there is no such key
  bool Remove(std::string_view key);
  /// @return none if there is no such key
  std::shared_ptr<clsKeploEvent> Find(std::string_view key) const;
  /// In order of insertion.
  const Members& All() const { return members_; }

 private:
  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>()(key); }
  };

  std::unordered_map<std::string, std::shared_ptr<clsKeploEvent>, KeyHash, std::equal_to<>> byKey_;
  Members members_;  // the same events, in order
};

}  // namespace keplo
