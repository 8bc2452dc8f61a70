#include <benchmark/benchmark.h>

#include "signal/monitored_press.h"
#include "signal/second_look/second_look.h"
#include "signal/signal_builder.h"

namespace keplo {
namespace {

const std::string kDigits = "00000000111111110110100010010111";

/// A capture that fills the buffer of the monitor: two frames and the silence between them.
std::string FullCapture() {
  std::vector<int> runs = tests::NecRuns(kDigits);
  runs.push_back(700);
  const std::vector<int> again = tests::NecRuns(kDigits);
  runs.insert(runs.end(), again.begin(), again.end());
  return tests::Padded(tests::Bytes(tests::Runs(runs)));
}

void BytesToCode(benchmark::State& state) {
  const std::string capture = FullCapture();
  SignalState signal;
  for (auto _ : state) {
    MonitorReading reading = ReadCapture(capture, signal);
    if (reading.Ended != Stage::Code) state.SkipWithError("the capture gave no code");
    benchmark::DoNotOptimize(reading);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(capture.size()));
}
BENCHMARK(BytesToCode);

void AnalyseTimingAlone(benchmark::State& state) {
  SignalState signal;
  ReadCapture(FullCapture(), signal);
  for (auto _ : state) benchmark::DoNotOptimize(AnalyseTiming(signal.SampleBits, signal.Measured));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(AnalyseTimingAlone);

void SecondLookAlone(benchmark::State& state) {
  SignalState signal;
  ReadCapture(FullCapture(), signal);
  for (auto _ : state) benchmark::DoNotOptimize(ReadRobustly(signal.SampleBits));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(SecondLookAlone);

}  // namespace
}  // namespace keplo
