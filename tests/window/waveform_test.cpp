#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

constexpr int kUpper = 197, kLower = 237;  // pixels

/// A window that shows a trace of 640 samples: 5 of 1 and 5 of 0 in turn.
class Waveform : public WindowTest {
 protected:
  void SetUp() override {
    Open(Config(Protocol("Mine", {"G10,EMPTY"})));
    mod_->Signal.RawCapture = Bytes(Runs(std::vector<int>(128, 5)));
    form_->HScroll1.Set(15, 16 - 640, 15);
  }

  double FirstX() const { return form_->Surface.Points().front().X; }
  double LastX() const { return form_->Surface.Points().back().X; }
};

TEST_F(Waveform, EverySampleIsADotAndEveryChangeAnEdge) {
  const ui::DrawingSurface& surface = form_->Surface;
  EXPECT_EQ(surface.Points().front(), (ui::DrawingSurface::Point{23, kUpper, ui::kGreen}));
  EXPECT_EQ(surface.Points()[5], (ui::DrawingSurface::Point{28, kLower, ui::kGreen}));
  EXPECT_EQ(surface.Lines()[0], (ui::DrawingSurface::Line{23, kLower, 23, kUpper, ui::kGreen}));
  EXPECT_EQ(surface.Lines()[1].X1, 28);
  EXPECT_EQ(LastX(), 532);
  EXPECT_EQ(mod_->Signal.SampleBits(), Runs(std::vector<int>(128, 5)));
  form_->HScroll1.SetValue(10);
  // The samples to the left of the margin are still followed: two of the run of 1 are left, then the edge.
  EXPECT_EQ(FirstX(), 21);
  EXPECT_EQ(surface.Lines().front().X1, 23);
  form_->HScroll1.SetValue(-10000);
  EXPECT_EQ(LastX(), 23);
}

TEST_F(Waveform, ZoomStretchesShrinksAndResets) {
  form_->GExt.Click();
  EXPECT_EQ(FirstX(), 46);
  form_->Gshr.Click();
  form_->Gshr.Click();
  EXPECT_EQ(FirstX(), 20.5);
  form_->HScroll1.SetValue(-100);
  form_->GReset.Click();
  EXPECT_EQ(FirstX() + form_->HScroll1.Value(), 23 + 15);
  for (const auto& [button, back] : {std::pair(&form_->GExt, &form_->Gshr), {&form_->Gshr, &form_->GExt}}) {
    for (int click = 0; click < 2000; ++click) button->Click();
    EXPECT_TRUE(form_->Surface.Points().empty());
    for (int click = 0; click < 2000 && form_->Surface.Points().empty(); ++click) back->Click();
    EXPECT_FALSE(form_->Surface.Points().empty());
    form_->GReset.Click();
  }
  form_->SendPulse.SetText(" ");
  form_->GExt.Click();
  EXPECT_EQ(FirstX(), 23) << "nothing is recorded";
  form_->SendPulse.SetText("550");
  mod_->Signal.RawCapture.resize(59);
  form_->GExt.Click();
  EXPECT_EQ(FirstX(), 23) << "too short";
}

TEST(WaveReading, ShowsTheRunAtThePointerAndTheDistanceOfTwoCursors) {
  WaveReading wave;
  wave.Read(Runs({10, 20, 200}));
  for (const auto& [sample, text] : std::vector<std::pair<int, std::string>>{{0, "mark 550 us, 1.0 T"},
                                                                             {9, "mark 550 us, 1.0 T"},
                                                                             {10, "space 1100 us, 2.0 T"},
                                                                             {-1, ""},
                                                                             {30, "mark 11.00 ms, 20.0 T"},
                                                                             {230, ""}}) {
    wave.PointAt(sample);
    EXPECT_EQ(wave.PointerText(550), text) << sample;
  }
  std::string steps;
  for (const int step : {1, 1, 1, 1, -1, -1, -1}) {
    wave.StepPointer(step);
    wave.PlaceCursor();
    steps += std::to_string(*wave.Pointer()) + " " + wave.CursorText(0) + "; ";
  }
  EXPECT_EQ(steps,
            "0 cursor at 0 ms; 10 distance 550 us; 30 cursor at 1.65 ms; 30 distance 0 us; "
            "10 cursor at 0.55 ms; 0 distance 550 us; 0 cursor at 0 ms; ");
  wave.UndoCursor();
  EXPECT_EQ(wave.CursorText(550), "distance 550 us, 1.0 T");
  wave.Read("10");
  EXPECT_EQ(wave.CursorText(550) + wave.PointerText(550), "") << "another trace";
}

TEST(WaveReading, TheTicksOfTheAxisAreRoundAndHaveRoomForTheirLabels) {
  for (const auto& [from, to, room, labels] : {std::tuple(0.0, 31.0, 7.0, "0 10 20 30 "),
                                               {0.0, 5.0, 1.1, "0 2 4 "},
                                               {99.9, 101.0, 0.5, "100 100.5 101 "},
                                               {0.0, 10.0, 1e300, "0 "},
                                               {5.0, 1.0, 1.0, ""}}) {
    std::string reported;
    for (const TimeTick& tick : TimeTicks(from, to, room))
      reported += tick.Labelled ? TimeText(tick.Ms) + " " : "";
    EXPECT_EQ(reported, labels);
  }
}

}  // namespace
}  // namespace keplo::tests
