#pragma once

#include <map>
#include <vector>

#include "shell/held_key.h"

namespace keplo {

/// The keys that are held, one at each receiver: rooms press theirs at the same time.
class HeldKeys {
 public:
  HeldKey& Of(int place) { return keys_[place]; }
  bool AnyPressed() const;
  /// When the first of them counts as let go unless a signal begins before; none if none is held.
  /// @param watchedFrom from then on nobody looked away from a line that hears by itself
  std::optional<std::chrono::microseconds> FirstLetGo(std::chrono::microseconds watchedFrom) const;
  /// Ends the presses that count as let go at a time.
  /// @param except a place whose signal is known, and which is left alone
  std::vector<KeyPress> LetGo(std::chrono::microseconds now, std::chrono::microseconds watchedFrom,
                              std::optional<int> except = std::nullopt);
  std::vector<KeyPress> LetAllGo();

 private:
  std::map<int, HeldKey> keys_;
};

}  // namespace keplo
