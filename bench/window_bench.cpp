#include <benchmark/benchmark.h>

#include "window/window_fixture.h"

namespace keplo {
namespace {

std::string Digits(unsigned number) {
  std::string digits;
  for (int bit = 15; bit >= 0; --bit) digits += (number >> static_cast<unsigned>(bit)) % 2 == 1 ? '1' : '0';
  return digits;
}

/// A window whose file holds 500 commands.
struct OpenWindow {
  tests::FakeDisk Disk;
  tests::FakeLine Line;
  tests::ScriptedBoxes Boxes;
  KeploMod Mod{"/home", Disk};
  Form1 Form{Mod, Line, Boxes};

  OpenWindow() {
    std::vector<std::string> commands;
    for (unsigned number = 0; number < 500; ++number) {
      commands.push_back("G" + Digits(number) + ",KEY" + std::to_string(number));
    }
    Disk.Put("keplo.cfg", tests::Config(tests::Protocol("Large", commands)));
    Form.Form_Load();
  }
};

void DrawWave8000Samples(benchmark::State& state) {
  OpenWindow window;
  window.Mod.Signal.RawCapture = tests::Bytes(tests::Runs(std::vector<int>(800, 10)));
  window.Form.HScroll1.Set(15, 16 - 8000, 15);
  int value = 0;
  for (auto _ : state) {
    window.Form.HScroll1.SetValue(value);
    value = value == 0 ? -1000 : 0;
  }
}
BENCHMARK(DrawWave8000Samples);

void Reload500Commands(benchmark::State& state) {
  OpenWindow window;
  for (auto _ : state) window.Form.Protocol_Click();
}
BENCHMARK(Reload500Commands);

}  // namespace
}  // namespace keplo
