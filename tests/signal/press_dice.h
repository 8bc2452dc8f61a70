#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "doubles/dice.h"
#include "signal_builder.h"

namespace keplo::tests {

/// What a remote sends for a key, microseconds, and the digits that are the key's.
struct Sent {
  std::string Digits;
  std::vector<std::vector<int>> Frames;  // in turns
  std::vector<int> Ditto = {};
  int Gap = 0;  // 0 for any
};

/// What interference and a weak signal do to a press.
inline void Damage(std::vector<int>& press, Dice& dice) {
  if (press.size() < 4) return;
  const auto erase = [&](std::size_t first, std::size_t count) {
    const auto begin = press.begin() + static_cast<std::ptrdiff_t>(first);
    press.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
  };
  const std::size_t run = dice.Place(press.size()), mark = 2 * dice.Place(press.size() / 2);
  const int damage = dice.From(0, 6), by = dice.From(-600, 900), few = dice.From(0, 11);
  if (damage == 0) erase(0, std::min(2 * static_cast<std::size_t>(few), press.size() - 1));
  if (damage == 1) press.resize(std::max<std::size_t>(3, run));
  for (int lost = 0; damage == 2 && lost <= few / 4 && mark > 0 && mark + 2 < press.size(); ++lost) {
    press[mark - 1] += press[mark] + press[mark + 1];
    erase(mark, 2);
  }
  if (damage == 3) press.insert(press.begin() + static_cast<std::ptrdiff_t>(run), {press[run] / 2, 25 * few});
  if (damage == 4) press[run] = std::max(1, press[run] + by);
  if (damage == 5) press[0] = std::max(60, press[0] - 2 * std::abs(by));
}

/// A press as a line hands its samples on.
inline std::string Heard(const Sent& sent, Dice& dice, double sampleTime, int frames) {
  std::vector<int> press;
  const int gap = dice.Once(4) ? dice.From(1500, 9000) : dice.From(9000, 60000);
  for (int frame = 0; frame < frames; ++frame) {
    const bool ditto = dice.Once(2) && frame > 0 && !sent.Ditto.empty();
    const auto& next = ditto ? sent.Ditto : sent.Frames[static_cast<std::size_t>(frame) % sent.Frames.size()];
    press = press.empty() ? next : Then(press, sent.Gap > 0 ? sent.Gap : gap, next);
  }
  for (int left = dice.From(0, 2); left > 0; --left) Damage(press, dice);
  const int clock = 1000 + dice.From(-40, 40);
  const int jitter = dice.From(0, dice.Once(3) ? 90 : 25);
  const int excess = dice.From(-60, dice.Once(3) ? 350 : 120);
  int time = dice.From(0, 99);
  std::string samples;
  for (std::size_t i = 0; i < press.size(); ++i) {
    time += press[i] * clock / 1000;  // whole, so that no machine rounds otherwise
    const int edge = time + (i % 2 == 0 ? excess : 0) + dice.From(-jitter, jitter);
    const auto end = static_cast<std::size_t>(std::max(0.0, edge / sampleTime));
    if (end > samples.size()) samples.resize(end, i % 2 == 0 ? '1' : '0');
  }
  samples.append(static_cast<std::size_t>(dice.From(0, 3000)), '0');
  return Bytes(samples.substr(0, 8000));
}

}  // namespace keplo::tests
