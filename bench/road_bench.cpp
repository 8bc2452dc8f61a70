#include <benchmark/benchmark.h>

#include <random>

#include "line/press_capture.h"
#include "signal/monitored_press.h"
#include "signal/raw/raw_index.h"
#include "signal/raw/raw_levels.h"
#include "signal/recorded_press.h"
#include "signal/signal_builder.h"
#include "synth/synth.h"

namespace keplo {
namespace {

using tests::Capture;
using tests::NecRuns;
using tests::Rc5Runs;
using tests::SonyRuns;
using tests::Then;
using RunVector = std::vector<int>;

const std::string kDigits = "00000000111111110110100010010111";
const std::string kSonyDigits = "101010010000";
const std::string kRc5Digits = "11000000010001";

class Dice {
 public:
  int From(int least, int most) {
    return least + static_cast<int>(generator_() % static_cast<unsigned>(most - least + 1));
  }

 private:
  std::mt19937 generator_{1};
};

/// Each sample by itself: the most runs that a capture can be expected to have.
std::string WhiteNoise() {
  Dice dice;
  std::string capture;
  while (capture.size() < kMonitorCaptureBytes) capture += static_cast<char>(dice.From(0, 255));
  return capture;
}

/// What a lamp makes of a receiver's output.
std::string Flicker() {
  Dice dice;
  RunVector runs;
  while (runs.size() < 400) runs.insert(runs.end(), {20 + dice.From(-1, 1), 30 + dice.From(-1, 1)});
  return Capture(runs);
}

std::string PulseNoise() {
  Dice dice;
  RunVector runs;
  while (runs.size() < 400) runs.insert(runs.end(), {8 + dice.From(0, 10), 12 + dice.From(0, 60)});
  return Capture(runs);
}

RunVector Thrice(const RunVector& frame) { return Then(Then(frame, 400, frame), 400, frame); }

/// Whether a press gives a code by either analysis, and noise by none.
void BytesToCode(benchmark::State& state, const std::string& capture, Analysis analysis, bool press) {
  SignalState signal;
  MonitorReading reading;
  for (auto _ : state) {
    ReadCapture(capture, signal, analysis, reading);
    benchmark::DoNotOptimize(reading);
  }
  if (press && reading.Ended != Stage::Code) state.SkipWithError("the press gave no code");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(capture.size()));
}

void LengthsToCode(benchmark::State& state, std::int16_t kind, const std::string& code, Analysis analysis) {
  const Press press = SynthPress(kind, code, {});
  PressSampler sampler;
  std::string capture;
  SignalState signal;
  MonitorReading reading;
  for (auto _ : state) {
    sampler.Sample(press, kMonitorCaptureBytes, {}, capture);
    ReadCapture(capture, signal, analysis, reading);
    benchmark::DoNotOptimize(reading);
  }
  if (reading.Ended != Stage::Code) state.SkipWithError("the press gave no code");
}

/// Whether a recording gives a code by either analysis; a dense signal gives none by the second look.
void RecordRoad(benchmark::State& state, const std::string& capture, Analysis analysis, bool press) {
  SignalState signal;
  RecordReading reading;
  for (auto _ : state) {
    ReadRecordedCapture(capture, signal, analysis, reading);
    benchmark::DoNotOptimize(reading);
  }
  if (press && reading.Ended != RecordStage::Code) state.SkipWithError("the recording gave no code");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(capture.size()));
}

RunVector RawRuns(Dice& dice) {
  RunVector runs = {60, 30};
  for (int digit = dice.From(50, 149); digit > 0; --digit)
    runs.insert(runs.end(), {8, 8 + 12 * dice.From(0, 2)});
  runs.push_back(8);
  return runs;
}

/// What a capture costs that goes to a thousand raw commands in the end.
void BytesToRaw(benchmark::State& state, const std::string& capture) {
  Dice dice;
  RawIndex index;
  SignalState signal;
  for (int number = 0; number < 1000; ++number) {
    signal.Samples.Read(Capture(RawRuns(dice), kRecordCaptureBytes));
    index.Add({std::to_string(number), {FindLevels(HeardIn(signal.Runs.Read(signal.Samples)))->Lengths}});
  }
  MonitorReading reading;
  for (auto _ : state) {
    ReadCapture(capture, signal, Analysis::Second, reading);
    benchmark::DoNotOptimize(index.Find(HeardIn(signal.Runs.Read(signal.Samples))));
  }
}

/// Frame after frame of a key that is held.
std::string HeldKey() {
  RunVector runs = SonyRuns(kSonyDigits);
  while (tests::Runs(runs).size() < kRecordCaptureBytes * kBitsPerByte)
    runs = Then(runs, 350, SonyRuns(kSonyDigits));
  return Capture(runs, kRecordCaptureBytes);
}

/// The most runs that a capture of a measurable signal can have: no silence anywhere.
std::string DenseSignal() {
  std::string samples = tests::Runs(SonyRuns(kSonyDigits));
  while (samples.size() < kRecordCaptureBytes * kBitsPerByte) samples += "000111";
  return tests::Padded(tests::Bytes(samples), kRecordCaptureBytes);
}

void Register() {
  const std::pair<const char*, Analysis> analyses[] = {{"first", Analysis::First},
                                                       {"second", Analysis::Second}};
  const std::tuple<const char*, std::string, bool> captures[] = {
      {"nec", Capture(Then(NecRuns(kDigits), 700, NecRuns(kDigits))), true},
      {"sony", Capture(Thrice(SonyRuns(kSonyDigits))), true},
      {"rc5", Capture(Rc5Runs(kRc5Digits)), true},
      {"white_noise", WhiteNoise(), false},
      {"flicker", Flicker(), false},
      {"pulse_noise", PulseNoise(), false},
  };
  const std::tuple<const char*, std::int16_t, std::string> presses[] = {
      {"nec", kNec, kDigits}, {"sony", kSony, kSonyDigits}, {"rc5", kRc5, "11000000001100"}};
  const std::tuple<const char*, std::string, bool> recordings[] = {
      {"held_key", HeldKey(), true},
      {"nec", Capture(NecRuns(kDigits), kRecordCaptureBytes), true},
      {"dense_signal", DenseSignal(), false},
  };
  for (const auto& [name, capture, press] : captures) {
    const std::string road = std::string("BytesToRaw/") + name;
    if (!press) benchmark::RegisterBenchmark(road.c_str(), BytesToRaw, capture);
  }
  Dice dice;
  benchmark::RegisterBenchmark("BytesToRaw/raw", BytesToRaw, Capture(RawRuns(dice)));
  for (const auto& [by, analysis] : analyses) {
    const auto named = [by = by](const std::string& road, const char* signal) {
      return road + "/" + signal + "/" + by;
    };
    for (const auto& [name, capture, press] : captures)
      benchmark::RegisterBenchmark(named("BytesToCode", name).c_str(), BytesToCode, capture, analysis, press);
    for (const auto& [name, kind, code] : presses)
      benchmark::RegisterBenchmark(named("LengthsToCode", name).c_str(), LengthsToCode, kind, code, analysis);
    for (const auto& [name, capture, press] : recordings)
      benchmark::RegisterBenchmark(named("RecordRoad", name).c_str(), RecordRoad, capture, analysis, press);
  }
}

[[maybe_unused]] const bool kRegistered = (Register(), true);

}  // namespace
}  // namespace keplo
