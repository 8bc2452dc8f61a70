#include <benchmark/benchmark.h>

#include "config/cfg_store.h"
#include "events/event_row.h"
#include "shell/shell_fixture.h"
#include "signal/signal_builder.h"

namespace keplo {
namespace {

const std::string kDigits = "00000000111111110110100010010111";

/// A text of about 32,000 characters with the command that the press means as its last one.
std::string LargeConfig() {
  tests::Texts commands;
  for (unsigned number = 0; commands.size() * 42 < 31300; ++number) {
    std::string code;
    for (int bit = 31; bit >= 0; --bit)
      code += (number * 2654435761U >> static_cast<unsigned>(bit)) % 2 == 1 ? '1' : '0';
    if (code != kDigits) commands.push_back("G" + code + ",KEY" + std::to_string(number));
  }
  commands.push_back("G" + kDigits + ",POWER");
  return tests::Config(tests::Protocol("NEC", commands));
}

void FindNoCaseAbsent(benchmark::State& state) {
  const std::string text = LargeConfig();
  for (auto _ : state) benchmark::DoNotOptimize(FindNoCase("G0101010101010101x", text, 1));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(FindNoCaseAbsent);

/// A line that hands the same press over at every capture.
class PressLine : public tests::FakeLine {
 public:
  explicit PressLine(std::string press) : press_(std::move(press)) {}
  std::int32_t DCD() override { return 0; }
  void RTS(std::int32_t /*state*/) override {}
  void TXD(std::int32_t /*state*/) override {}
  void IRMonitor(std::span<char> buffer, std::int32_t /*delay*/) override {
    std::copy(press_.begin(), press_.end(), buffer.begin());
  }
  void uDelay(std::int32_t /*microseconds*/) override {}
  void SpeakBeep(std::int32_t /*frequency*/, std::int32_t /*duration*/) override {}

 private:
  std::string press_;
};

void PressToEvent(benchmark::State& state) {
  tests::TempFolder folder;
  folder.Write("keplo.cfg", LargeConfig());
  PosixFileSystem files;
  tests::StoppedClock clock;
  tests::ScriptedBoxes boxes;
  tests::ScriptedDialog dialog;
  PressLine line(tests::Bytes(tests::Runs(tests::NecRuns(kDigits))));
  KeploMod mod(folder.Path(), files);
  Keplo control(mod, line, {boxes, dialog}, clock);
  for (int row = 1; row <= 200; ++row) {
    AppendEventRow(control.ListView1,
                   {std::to_string(row), "Lamp", "", row == 200 ? "NEC&POWER" : "NEC&OTHER", true, 0});
  }
  std::int64_t raised = 0;
  control.TriggerInputEvent = [&](HostInputEvent&) { ++raised; };
  control.InputStartMonitoring();
  for (auto _ : state) control.Timer1.Tick();
  if (raised != state.iterations()) state.SkipWithError("a press raised no event");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(PressToEvent);

}  // namespace
}  // namespace keplo
