#pragma once

#include <map>
#include <vector>

#include "shell/held_key.h"

namespace keplo {

/// The held keys, one per receiver: several rooms may press keys at the same time.
class HeldKeys {
 public:
  HeldKey& Of(int place) { return keys_[place]; }
  bool AnyPressed() const;
  /// When the first of them counts as released unless a signal begins earlier; none if none is held.
  /// @param watchedFrom the local line has been watched without a break from then on
  std::optional<std::chrono::microseconds> FirstReleaseTime(std::chrono::microseconds watchedFrom) const;
  /// Ends the presses that count as released by now.
  /// @param except a place to leave alone, because a signal from there is about to be added
  std::vector<KeyPress> ReleaseDue(std::chrono::microseconds now, std::chrono::microseconds watchedFrom,
                                   std::optional<int> except = std::nullopt);
  std::vector<KeyPress> ReleaseAll();

 private:
  std::map<int, HeldKey> keys_;
};

}  // namespace keplo
