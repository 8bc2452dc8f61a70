#include "shell/held_keys.h"

#include <algorithm>

namespace keplo {

namespace {

/// Whoever is told of signals misses none, and need not watch for them.
std::chrono::microseconds WatchedFrom(int place, std::chrono::microseconds watchedFrom) {
  return place == 0 ? watchedFrom : std::chrono::microseconds(0);
}

}  // namespace

bool HeldKeys::AnyPressed() const {
  return std::any_of(keys_.begin(), keys_.end(), [](const auto& key) { return key.second.Pressed(); });
}

std::optional<std::chrono::microseconds> HeldKeys::FirstLetGo(std::chrono::microseconds watchedFrom) const {
  std::optional<std::chrono::microseconds> first;
  for (const auto& [place, key] : keys_) {
    if (!key.Pressed()) continue;
    const auto time = key.LetGoAt(WatchedFrom(place, watchedFrom));
    if (!first || time < *first) first = time;
  }
  return first;
}

std::vector<KeyPress> HeldKeys::LetGo(std::chrono::microseconds now, std::chrono::microseconds watchedFrom,
                                      std::optional<int> except) {
  std::vector<KeyPress> ended;
  for (auto& [place, key] : keys_) {
    if (place == except || !key.Pressed() || now < key.LetGoAt(WatchedFrom(place, watchedFrom))) continue;
    ended.push_back(*key.LetGo());
  }
  std::erase_if(keys_, [](const auto& key) { return !key.second.Pressed(); });
  return ended;
}

std::vector<KeyPress> HeldKeys::LetAllGo() {
  std::vector<KeyPress> ended;
  for (auto& [place, key] : keys_) {
    if (auto press = key.LetGo()) ended.push_back(*std::move(press));
  }
  keys_.clear();
  return ended;
}

}  // namespace keplo
