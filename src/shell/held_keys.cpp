#include "shell/held_keys.h"

#include <algorithm>

namespace keplo {

namespace {

/// Receivers other than the local line report every signal, so there are no gaps in watching them.
std::chrono::microseconds WatchedFrom(int place, std::chrono::microseconds watchedFrom) {
  return place == 0 ? watchedFrom : std::chrono::microseconds(0);
}

}  // namespace

bool HeldKeys::AnyPressed() const {
  return std::any_of(keys_.begin(), keys_.end(), [](const auto& key) { return key.second.Press(); });
}

std::optional<std::chrono::microseconds> HeldKeys::FirstReleaseTime(
    std::chrono::microseconds watchedFrom) const {
  std::optional<std::chrono::microseconds> first;
  for (const auto& [place, key] : keys_) {
    if (!key.Press()) continue;
    const auto time = key.ReleaseTime(WatchedFrom(place, watchedFrom));
    if (!first || time < *first) first = time;
  }
  return first;
}

std::vector<KeyPress> HeldKeys::ReleaseDue(std::chrono::microseconds now,
                                           std::chrono::microseconds watchedFrom, std::optional<int> except) {
  std::vector<KeyPress> ended;
  for (auto& [place, key] : keys_) {
    if (place == except || !key.Press() || now < key.ReleaseTime(WatchedFrom(place, watchedFrom))) continue;
    ended.push_back(*key.Release());
  }
  std::erase_if(keys_, [](const auto& key) { return !key.second.Press(); });
  return ended;
}

std::vector<KeyPress> HeldKeys::ReleaseAll() {
  std::vector<KeyPress> ended;
  for (auto& [place, key] : keys_) {
    if (auto press = key.Release()) ended.push_back(*std::move(press));
  }
  keys_.clear();
  return ended;
}

}  // namespace keplo
