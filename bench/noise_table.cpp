#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "family_press.h"
#include "family_tables.h"
#include "line/press_capture.h"
#include "raw_keys.h"
#include "signal/monitored_press.h"
#include "signal/send_bits.h"

namespace keplo::bench {

namespace {

constexpr int kCaptures = 10'000;  // of a row
constexpr std::size_t kSamples = kMonitorCaptureBytes * 8;

/// Samples of what is no press, and the codes that may be read of it all the same.
struct Noise {
  std::string Samples;
  std::vector<std::string> Sent = {};
};

struct NoiseMaker {
  const char* Name;
  Noise (*Make)(Dice& dice);
};

void AddPulse(std::string& samples, int mark, int space) {
  samples.append(static_cast<std::size_t>(std::max(mark, 1)), '1');
  samples.append(static_cast<std::size_t>(std::max(space, 1)), '0');
}

Noise Hiss(Dice& dice) {
  const int density = dice.From(1, 99);
  Noise noise;
  while (noise.Samples.size() < kSamples) noise.Samples += dice.Percent(density) ? '1' : '0';
  return noise;
}

Noise Flicker(Dice& dice) {
  const int mark = dice.From(3, 80), space = dice.From(3, 160);
  Noise noise;
  for (int pairs = dice.From(5, 200); pairs > 0; --pairs)
    AddPulse(noise.Samples, mark + dice.From(-1, 1), space + dice.From(-1, 1));
  return noise;
}

/// Equal pulses of which some fail, after a leader, sent again and again.
Noise Trains(Dice& dice) {
  const int mark = dice.From(4, 18), space = dice.From(4, 45), fails = dice.From(0, 1) * dice.From(1, 30);
  const int pulses = dice.From(8, 60), gap = dice.From(70, 1100);
  Noise noise;
  for (int train = dice.From(1, 6); train > 0; --train) {
    if (dice.Percent(70)) AddPulse(noise.Samples, mark * dice.From(2, 18), space * dice.From(1, 8));
    for (int pulse = pulses + dice.From(-1, 1); pulse > 0; --pulse) {
      const bool fail = dice.Percent(fails);
      noise.Samples.append(static_cast<std::size_t>(mark), fail ? '0' : '1');
      noise.Samples.append(static_cast<std::size_t>(space + dice.From(0, 1)), '0');
    }
    noise.Samples.append(static_cast<std::size_t>(gap), '0');
  }
  return noise;
}

/// A lamp on mains: some equal pulses each half wave, the first one longer now and then.
Noise Bursts(Dice& dice) {
  const int period = dice.From(0, 1) == 0 ? 182 : 152, mark = dice.From(3, 20), space = dice.From(3, 25);
  const int pulses = std::max(1, period * dice.From(20, 90) / 100 / (mark + space)), varies = dice.From(0, 2);
  const int first = dice.Percent(30) ? mark * dice.From(2, 8) : mark;
  Noise noise;
  while (noise.Samples.size() < kSamples) {
    const std::size_t end = noise.Samples.size() + static_cast<std::size_t>(period);
    for (int pulse = pulses + dice.From(-varies, varies), i = 0; i < pulse; ++i)
      AddPulse(noise.Samples, (i == 0 ? first : mark) + dice.From(0, 1), space + dice.From(0, 1));
    if (noise.Samples.size() < end) noise.Samples.resize(end, '0');
  }
  return noise;
}

/// A ballast: pulses whose lengths swing with mains.
Noise Ballast(Dice& dice) {
  constexpr double kTurn = 6.283185307;
  const int step = dice.From(6, 45), depth = dice.From(10, 90), middle = dice.From(20, 80);
  Noise noise;
  while (noise.Samples.size() < kSamples) {
    const double swing = 0.5 * depth * std::sin(kTurn * static_cast<double>(noise.Samples.size()) / 182);
    const int mark = static_cast<int>(step * std::clamp(middle + swing, 2.0, 98.0) / 100);
    AddPulse(noise.Samples, mark, step - mark + dice.From(0, 1));
  }
  return noise;
}

Noise Sunlight(Dice& dice) {
  const int mark = dice.From(1, 12), space = dice.From(5, 150);
  Noise noise;
  while (noise.Samples.size() < kSamples)
    AddPulse(noise.Samples, dice.From(1, 2 * mark), dice.From(1, space) * dice.From(1, space) / space * 2);
  return noise;
}

struct Sent {
  std::string Samples, Code;
};

Sent AnyPress(Dice& dice) {
  const auto families = PressFamilies();
  const PressOnAir press =
      families[static_cast<std::size_t>(dice.From(0, static_cast<int>(families.size()) - 1))].Make(
          dice, dice.From(1, 3));
  const PulseTrain received = ReceivedAsReal(press.Lengths, dice);
  return {SamplesToBits(PulsesToCapture(received, kNominalSampleTime, kMonitorCaptureBytes)), press.Code};
}

/// Either of two frames in turns is what such a remote sends, too.
std::vector<std::string> CodesOf(const Sent& one, const Sent& other) {
  std::vector<std::string> codes = {one.Code, other.Code};
  for (const Sent* press : {&one, &other}) {
    const std::size_t half = press->Code.size() / 2;
    if (half == 16) codes.insert(codes.end(), {press->Code.substr(0, half), press->Code.substr(half)});
  }
  return codes;
}

Noise TwoAtOnce(Dice& dice) {
  const Sent one = AnyPress(dice), other = AnyPress(dice);
  Noise noise{one.Samples, CodesOf(one, other)};
  const auto late = static_cast<std::size_t>(dice.From(0, 2500));
  for (std::size_t i = late; i < kSamples; ++i)
    if (other.Samples[i - late] == '1') noise.Samples[i] = '1';
  return noise;
}

Noise CutIntoAnother(Dice& dice) {
  const Sent one = AnyPress(dice), other = AnyPress(dice);
  const auto cut = static_cast<std::size_t>(dice.From(100, 2500));
  return {one.Samples.substr(0, cut) + other.Samples.substr(0, kSamples - cut), CodesOf(one, other)};
}

constexpr std::array kNoises = {NoiseMaker{"hiss", Hiss},
                                NoiseMaker{"flicker", Flicker},
                                NoiseMaker{"pulse trains", Trains},
                                NoiseMaker{"bursts of a lamp", Bursts},
                                NoiseMaker{"ballast", Ballast},
                                NoiseMaker{"sunlight", Sunlight},
                                NoiseMaker{"two remotes at once", TwoAtOnce},
                                NoiseMaker{"a press cut into another", CutIntoAnother}};

bool IsWrongCode(const MonitorReading& reading, const std::vector<std::string>& sent) {
  return reading.Ended == Stage::Code && std::find(sent.begin(), sent.end(), reading.Digits) == sent.end();
}

void PrintRow(const NoiseMaker& maker, const RawIndex& index) {
  Dice dice(1);
  int first = 0, second = 0, raw = 0;
  for (int count = 0; count < kCaptures; ++count) {
    Noise noise = maker.Make(dice);
    noise.Samples.resize(kSamples, '0');
    const std::string capture = BitsToChars(noise.Samples);
    SignalState state;
    if (IsWrongCode(ReadCapture(capture, state, Analysis::First), noise.Sent)) ++first;
    const MonitorReading reading = ReadCapture(capture, state, Analysis::Second);
    if (IsWrongCode(reading, noise.Sent)) ++second;
    const bool asked = reading.Ended != Stage::Code && reading.Ended > Stage::Short;
    if (asked && index.Find(HeardIn(state.Runs.Read(state.Samples))).Alone) ++raw;
  }
  std::printf("| %s | %d | %d | %d |\n", maker.Name, first, second, raw);
}

}  // namespace

void PrintNoise() {
  constexpr int kRawCommands = 1000;
  RawIndex index;
  Dice dice(2);
  for (int key = 0; key < kRawCommands; ++key) {
    if (const auto signal = LearnRawKey(RandomRawKey(dice), kNominalSampleTime, dice)) {
      index.Add({std::to_string(key), {*signal}});
    }
  }
  std::printf(
      "\n### Noise\n\n| 10,000 captures of | codes, first | codes, second | of 1,000 raw commands |\n"
      "|---|---|---|---|\n");
  for (const NoiseMaker& noise : kNoises) PrintRow(noise, index);
}

}  // namespace keplo::bench
