#include "line/press_capture.h"

#include <gtest/gtest.h>

#include "line/kept_capture.h"
#include "press_builder.h"
#include "signal/first_analysis.h"
#include "signal/sample_bits.h"

namespace keplo::tests {
namespace {

using namespace std::string_literals;

TEST(PulsesToCapture, SamplesFromTheFirstEdgeToTheEndOfTheBuffer) {
  struct Case {
    std::string Name;
    PulseTrain Press;
    std::size_t Bytes;
    std::string Samples;
  };
  const std::vector<Case> cases = {
      {"a press", {100, 100, 200, 900}, 2, "1100111100000000"},
      {"marks over whole bytes", {300, 100, 1050}, 4, "11111100111111111111111111111000"},
      {"cut in a mark", {100, 100, 2000}, 1, "11001111"},
      {"nothing", {}, 1, "00000000"},
      {"no buffer", {100}, 0, ""},
      // 1.4 samples each: rounded one by one, ten runs would lose four samples.
      {"many edges", PulseTrain(10, 70), 2, "1001001011011000"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(SamplesToBits(PulsesToCapture(c.Press, 50, c.Bytes)), c.Samples) << c.Name;
}

TEST(CaptureOfPress, ShapesPulsesUnlessToldNotToAndNoRawBytes) {
  const RawBytes raw{"\x01\x02\x03"s};
  EXPECT_EQ(CaptureOfPress(raw, 5, {}), "\x01\x02\x03\0\0"s);
  EXPECT_EQ(CaptureOfPress(raw, 2, {}), "\x01\x02"s);
  EXPECT_EQ(SignalOfPress(raw, 5, {}), raw.Bytes);
  const PulseTrain press = Clean(kSony, kSonyBits, 200);
  LineOptions unshaped;
  unshaped.Shape = false;
  EXPECT_EQ(CaptureOfPress(press, 510, unshaped), PulsesToCapture(press, 55, 510));
  EXPECT_EQ(Heard(press, unshaped), "no-timing");
  EXPECT_EQ(Heard(press), kSonyBits);
  // What is left out or copied cannot contradict, and what is laid on a raster may be another digit.
  constexpr Analysis kSecond = Analysis::Second;
  LineOptions kept;
  kept.ReadBy = &kSecond;
  PulseTrain damaged = press;
  damaged[7] += 400;
  EXPECT_EQ(CaptureOfPress(damaged, 510, kept), PulsesToCapture(damaged, 55, 510));
  EXPECT_EQ(PressOnAir(damaged, kept), damaged);
  damaged[9] = 90;
  EXPECT_LT(PressOnAir(damaged, kept).size(), damaged.size());
  PulseTrain fine(40, 400);
  for (const int i : {3, 9, 11, 15, 19, 21}) fine[i] = i == 11 ? 90 : 160;
  EXPECT_EQ(PressOnAir(fine, kept), fine) << "a remote's own, as some are hardly longer than glitches";
}

TEST(CaptureToShow, BringsBackWhatWasKeptAtAnySampleTimeAndShapesAllElse) {
  const PulseTrain press = Clean(kSony, kSonyBits, 200);
  LineOptions asRecorded;
  asRecorded.HoldMs = 0;
  const std::string capture = CaptureOfPress(press, 1000, asRecorded);
  for (const double sampleTime : {55.0, 60.0, 52.5, 50.5}) {
    const PulseTrain kept = PulsesOfCapture({capture, sampleTime});
    EXPECT_EQ(kept.front(), static_cast<int>(SamplesToBits(capture).find('0') * sampleTime));
    const TimedCapture shown = CaptureToShow(kept, sampleTime, Analysis::First);
    EXPECT_EQ(shown.Bytes, capture);
    EXPECT_EQ(shown.SampleTime, sampleTime);
    EXPECT_EQ(CaptureToShow(press, sampleTime, Analysis::First).Bytes, capture);
    EXPECT_EQ(CaptureToShow(press, sampleTime, Analysis::Second).Bytes, PulsesToCapture(press, 55, 1000));
  }
}

}  // namespace
}  // namespace keplo::tests
