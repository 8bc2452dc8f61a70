#include <benchmark/benchmark.h>

#include <QApplication>

#include "qt/form1_view.h"
#include "window/window_fixture.h"

namespace keplo {
namespace {

constexpr std::size_t kSamples = 8000;

/// A press of an odd length everywhere, so that no two edges fall into step with the pixels.
std::string LongCapture() {
  std::string samples;
  for (int run = 7; samples.size() < kSamples; run = run % 23 + 7) samples += tests::Runs({run, run + 3});
  return tests::Bytes(samples.substr(0, kSamples));
}

/// A line on which no port can be opened.
class NoPorts : public tests::FakeLine {
 public:
  NoPorts() {
    Opens = [](std::int32_t) { return false; };
  }
};

/// The main window on a screen that nobody sees.
struct ShownWindow {
  tests::FakeDisk Disk;
  NoPorts Line;
  tests::ScriptedBoxes Boxes;
  KeploMod Mod{"/home", Disk};
  Form1 Form{Mod, Line, Boxes};
  qt::Form1View View{Form};

  ShownWindow() {
    std::string config = tests::Config(tests::Protocol("Television", {"G10,POWER", "G11,MUTE"}));
    const std::string_view beeps = "BEEPON= 1";
    config.replace(config.find(beeps), beeps.size(), "BEEPON= 0");
    Disk.Put("keplo.cfg", config);
    Form.Form_Load();
    View.show();
    QCoreApplication::processEvents();
  }
};

/// From a change of the scroll bar to the pixels of the window.
/// @param shrinks presses of -><- ahead: without one the box shows 500 of the samples, after four all of them
void TraceToPixels(benchmark::State& state) {
  ShownWindow window;
  window.Mod.Signal.RawCapture = LongCapture();
  for (auto shrinks = state.range(0); shrinks > 0; --shrinks) window.Form.Gshr_Click();
  window.Form.HScroll1.Set(15, 16 - static_cast<int>(kSamples), 15);
  auto& box = *window.View.findChild<QWidget*>(QStringLiteral("Signal"));
  int value = 0;
  for (auto _ : state) {
    window.Form.HScroll1.SetValue(value);
    box.repaint();
    value = value == 0 ? -1 : 0;
  }
  const QImage picture = box.grab().toImage();
  int lit = 0;
  for (int column = 0; column < picture.width(); ++column) {
    for (int row = 0; row < picture.height(); ++row) {
      if (picture.pixelColor(column, row) == QColor(Qt::green)) ++lit;
    }
  }
  if (lit < picture.width() / 2) state.SkipWithError("the box shows no trace");
}
BENCHMARK(TraceToPixels)->ArgName("shrinks")->Arg(0)->Arg(4)->Unit(benchmark::kMillisecond);

/// From nothing to a window on screen, while none of the 30 ports is there.
void StartOfTheWindow(benchmark::State& state) {
  for (auto _ : state) {
    const ShownWindow window;
    if (!window.View.isVisible()) state.SkipWithError("the window is not shown");
  }
}
BENCHMARK(StartOfTheWindow)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace keplo
