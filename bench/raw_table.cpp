#include <array>
#include <cstdio>
#include <vector>

#include "family_press.h"
#include "family_tables.h"
#include "line/press_capture.h"
#include "raw_keys.h"
#include "signal/raw/raw_levels.h"
#include "signal/signal_state.h"

namespace keplo::bench {

namespace {

constexpr int kKeys = 500;
constexpr int kMostExcess = 120;  // microseconds

/// Lengths as a capture of so many bytes holds them; they live in the state.
HeardLengths Hear(const RawLengths& key, int jitter, double sampleTime, std::size_t bytes, SignalState& state,
                  Dice& dice) {
  const PulseTrain press = Received(key, dice.From(0, kMostExcess), jitter, 0, dice);
  state.Samples.Read(PulsesToCapture(press, sampleTime, bytes));
  return HeardIn(state.Runs.Read(state.Samples), sampleTime);
}

void PrintCell(int jitter, double sampleTime) {
  constexpr std::size_t kLearned = 1000;  // bytes of a recording
  Dice dice(1);
  std::vector<RawLengths> keys;
  RawIndex index;
  for (int key = 0; key < kKeys; ++key) {
    keys.push_back(RandomRawKey(dice));
    SignalState state;
    const auto levels = FindLevels(Hear(keys.back(), jitter, sampleTime, kLearned, state, dice));
    if (levels) index.Add({std::to_string(key), {levels->Lengths}});
  }
  int right = 0, wrong = 0;
  for (int key = 0; key < kKeys; ++key) {
    SignalState state;
    const auto match = index.Find(
        Hear(keys[static_cast<std::size_t>(key)], jitter, sampleTime, kMonitorCaptureBytes, state, dice));
    if (match.Alone) ++(match.Digits == std::to_string(key) ? right : wrong);
  }
  std::printf(" %.1f %% / %d |", 100.0 * right / kKeys, wrong);
}

}  // namespace

RawLengths RandomRawKey(Dice& dice) {
  const int unit = dice.From(300, 650);
  const auto distance = [&](int digits, int lead) {
    return DistanceFrame({lead * unit, lead * unit / 2}, unit, unit, 3 * unit, dice.Digits(digits));
  };
  switch (dice.From(0, 3)) {
    case 0: {  // two parts that differ
      const std::array parts = {distance(dice.From(24, 40), 8), distance(dice.From(28, 50), 8)};
      return JoinFrames(parts, 20'000);
    }
    case 1: {  // three lengths of space
      RawLengths frame = {8 * unit, 4 * unit};
      for (int digits = dice.From(12, 30); digits > 0; --digits)
        frame.insert(frame.end(), {unit, unit * dice.From(1, 3)});
      frame.push_back(unit);
      return frame;
    }
    case 2: {  // mark or space is the longer one, thrice
      RawLengths frame;
      for (const char digit : dice.Digits(12))
        frame.insert(frame.end(), {digit == '1' ? 3 * unit : unit, digit == '1' ? unit : 3 * unit});
      frame.pop_back();
      return JoinFrames(std::array{frame, frame, frame}, 8000);
    }
    default:
      return distance(dice.From(49, 100), 16);
  }
}

std::optional<RawLengths> LearnRawKey(const RawLengths& key, double sampleTime, Dice& dice) {
  constexpr int kUsualJitter = 15;
  SignalState state;
  const auto levels = FindLevels(Hear(key, kUsualJitter, sampleTime, kMonitorCaptureBytes, state, dice));
  return levels ? std::optional(levels->Lengths) : std::nullopt;
}

void PrintRawKeys() {
  constexpr std::array kSampleTimes = {50, 55, 60, 80, 100};
  std::printf("\n### Raw commands\n\n| jitter, us |");
  for (const int sampleTime : kSampleTimes) std::printf(" %d us a sample |", sampleTime);
  std::printf("\n|---|---|---|---|---|---|\n");
  for (const int jitter : {0, 10, 25, 40}) {
    std::printf("| %d |", jitter);
    for (const int sampleTime : kSampleTimes) PrintCell(jitter, sampleTime);
    std::printf("\n");
  }
}

}  // namespace keplo::bench
