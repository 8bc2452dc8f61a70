#include "window/wave_reading.h"

#include <gtest/gtest.h>

#include <cmath>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

TEST(WaveReading, TellsTheRunAtThePointerAndTheDistanceOfTwoCursors) {
  WaveReading wave;
  wave.Read(Runs({10, 20, 200}));
  const std::pair<int, const char*> texts[] = {{0, "mark 550 us, 1.0 T"},     {9, "mark 550 us, 1.0 T"},
                                               {10, "space 1100 us, 2.0 T"},  {-1, ""},
                                               {30, "mark 11.00 ms, 20.0 T"}, {230, ""}};
  for (const auto& [sample, text] : texts) {
    wave.PointAt(sample);
    EXPECT_EQ(wave.PointerText(550), text) << sample;
  }
  std::string steps;
  for (const int step : {1, 1, 1, 1, -1, -1, -1}) {
    wave.StepPointer(step);
    steps += std::to_string(*wave.Pointer()) + " ";
    wave.PlaceCursor();
    steps += wave.CursorText(0) + "; ";
  }
  EXPECT_EQ(steps,
            "0 cursor at 0 ms; 10 distance 550 us; 30 cursor at 1.65 ms; 30 distance 0 us; "
            "10 cursor at 0.55 ms; 0 distance 550 us; 0 cursor at 0 ms; ");
  wave.TakeCursorBack();
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
    std::string told;
    for (const TimeTick& tick : TimeTicks(from, to, room))
      told += tick.Labelled ? TimeText(tick.Ms) + " " : "";
    EXPECT_EQ(told, labels);
  }
}

class WaveformZoom : public WindowTest {};

TEST_F(WaveformZoom, KeepsWhatStandsAtAPlaceAndFitsTheWholeTrace) {
  Open(Config(Protocol("Mine", {"G10,EMPTY"})));
  Record(NecRuns("00000000111111110110100010010111"));
  for (const double factor : {2.0, 2.0, 8.0, 0.25, 0.001}) {
    const double sample = form_->WaveSample(100);
    form_->ZoomWave(100, factor);
    EXPECT_NEAR(form_->WaveSample(100), sample, 1) << factor;
  }
  form_->FitWave();
  const auto& points = form_->Surface.Points();
  EXPECT_GT(form_->WavePlace(0), 20);
  EXPECT_LT(form_->WavePlace(form_->Wave.Samples()), form_->Surface.Width - 20);
  EXPECT_LT(points.size(), 4U * 4 * static_cast<std::size_t>(form_->Surface.Width))
      << "as many as pixels, not samples";
  form_->GReset.Click();
  EXPECT_EQ(form_->WavePlace(0), 23);
}

}  // namespace
}  // namespace keplo::tests
