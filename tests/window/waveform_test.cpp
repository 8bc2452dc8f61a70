#include <gtest/gtest.h>

#include <algorithm>

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
  EXPECT_EQ(mod_->Signal.SampleBits, Runs(std::vector<int>(128, 5)));
  EXPECT_TRUE(std::all_of(surface.Points().begin(), surface.Points().end(), [](const auto& point) {
    const Place& box = FindControl("Signal")->At;
    return point.X * kTwipsPerPixel > box.Left && point.X * kTwipsPerPixel < box.Left + box.Width &&
           point.Y * kTwipsPerPixel > box.Top && point.Y * kTwipsPerPixel < box.Top + box.Height;
  }));
}

TEST_F(Waveform, TheScrollBarSlidesTheTraceToTheLeft) {
  form_->HScroll1.SetValue(12);
  EXPECT_EQ(FirstX(), 21);
  EXPECT_EQ(form_->Surface.Points().front().Y, kUpper);
  form_->HScroll1.SetValue(10);
  // The samples to the left of the margin are still followed: two of the run of 1 are left, then the edge.
  EXPECT_EQ(FirstX(), 21);
  EXPECT_EQ(form_->Surface.Lines().front().X1, 23);
  form_->HScroll1.SetValue(-10000);
  EXPECT_EQ(LastX(), 23);
}

TEST_F(Waveform, ZoomStretchesSqueezesAndComesBack) {
  int shown = 0;
  form_->Surface.OnShow = [&] { ++shown; };
  form_->GExt.Click();
  EXPECT_EQ(FirstX(), 46);
  form_->Gshr.Click();
  form_->Gshr.Click();
  EXPECT_EQ(FirstX(), 20.5);
  form_->HScroll1.SetValue(-100);
  form_->GReset.Click();
  EXPECT_EQ(FirstX(), 23);
  EXPECT_EQ(form_->HScroll1.Value(), 15);
  EXPECT_EQ(shown, 6);
}

TEST_F(Waveform, NoZoomIsTooFarToComeBackFrom) {
  for (ui::Button* button : {&form_->GExt, &form_->Gshr}) {
    ui::Button& back = button == &form_->GExt ? form_->Gshr : form_->GExt;
    for (int click = 0; click < 2000; ++click) button->Click();
    EXPECT_TRUE(form_->Surface.Points().empty());
    for (int click = 0; click < 2000 && form_->Surface.Points().empty(); ++click) back.Click();
    EXPECT_FALSE(form_->Surface.Points().empty());
    form_->GReset.Click();
  }
}

TEST_F(Waveform, WithoutATraceTheButtonsDoNothing) {
  form_->SendPulse.SetText(" ");
  form_->GExt.Click();
  form_->GReset.Click();
  EXPECT_EQ(FirstX(), 23);
  form_->SendPulse.SetText("550");
  mod_->Signal.RawCapture.resize(59);
  form_->GExt.Click();
  EXPECT_EQ(FirstX(), 23);
}

TEST_F(Waveform, ACaptureThatTheWindowDidNotDrawLeavesItAlive) {
  Open(Config(Protocol("Mine", {"G10,EMPTY"})));
  mod_->Signal.RawCapture = std::string(100, '\xAA');
  form_->GReset.Click();
  EXPECT_EQ(FirstX(), 23);
  EXPECT_EQ(form_->Surface.Lines().size(), form_->Surface.Points().size());
}

}  // namespace
}  // namespace keplo::tests
