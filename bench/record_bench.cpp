#include <benchmark/benchmark.h>

#include "signal/recorded_press.h"
#include "signal/signal_builder.h"

namespace keplo {
namespace {

/// A capture that fills the buffer of the record flow: frame behind frame of a key that is held.
std::string HeldKey() {
  std::vector<int> runs;
  while (tests::Runs(runs).size() < kRecordCaptureBytes * 8) {
    const std::vector<int> frame = tests::SonyRuns("101010010000");
    if (!runs.empty()) runs.push_back(350);
    runs.insert(runs.end(), frame.begin(), frame.end());
  }
  return tests::Padded(tests::Bytes(tests::Runs(runs)), kRecordCaptureBytes);
}

/// The most runs that a capture of a measurable signal can have: no silence anywhere.
std::string DenseSignal() {
  std::string samples = tests::Runs(tests::SonyRuns("101010010000"));
  while (samples.size() < kRecordCaptureBytes * 8) samples += "000111";
  return tests::Padded(tests::Bytes(samples), kRecordCaptureBytes);
}

void RecordRoad(benchmark::State& state, const std::string& capture) {
  SignalState signal;
  for (auto _ : state) {
    RecordReading reading = ReadRecordedCapture(capture, signal);
    if (reading.Ended != RecordStage::Code) state.SkipWithError("the recording gave no code");
    benchmark::DoNotOptimize(reading);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(capture.size()));
}
BENCHMARK_CAPTURE(RecordRoad, held_key, HeldKey());
BENCHMARK_CAPTURE(RecordRoad, dense_signal, DenseSignal());

}  // namespace
}  // namespace keplo
