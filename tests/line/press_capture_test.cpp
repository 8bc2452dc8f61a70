#include "line/press_capture.h"

#include <gtest/gtest.h>

#include "press_builder.h"
#include "signal/sample_bits.h"
#include "signal/timing.h"

namespace keplo {
namespace {

using namespace std::string_literals;
using tests::Clean;
using tests::Heard;

std::string Bits(const PulseTrain& train, double sampleTime, std::size_t bytes) {
  return SamplesToBits(PulsesToCapture(train, sampleTime, bytes));
}

TEST(PulsesToCapture, SamplesFromTheFirstEdgeToTheEndOfTheBuffer) {
  EXPECT_EQ(Bits({100, 100, 200, 900}, 50, 2), "1100111100000000");
  EXPECT_EQ(Bits({100, 100, 2000}, 50, 1), "11001111") << "cut in a mark";
  EXPECT_EQ(Bits({}, 50, 1), "00000000");
  EXPECT_EQ(Bits({100}, 50, 0), "");
}

TEST(PulsesToCapture, FollowsTheClockOverManyEdges) {
  // 1.4 samples each: rounded one by one, ten runs would lose four samples.
  EXPECT_EQ(Bits(PulseTrain(10, 70), 50, 2), "1001001011011000");
}

TEST(CaptureOfPress, LeavesRawBytesAsTheyAre) {
  const RawBytes raw{"\x01\x02\x03"s};
  EXPECT_EQ(CaptureOfPress(raw, 5, {}), "\x01\x02\x03\0\0"s);
  EXPECT_EQ(CaptureOfPress(raw, 2, {}), "\x01\x02"s);
  EXPECT_EQ(SignalOfPress(raw, 5, {}), raw.Bytes);
}

TEST(CaptureOfPress, ShapesUnlessToldNotTo) {
  const PulseTrain press = Clean(kSony, tests::kSonyBits, 200);
  LineOptions unshaped;
  unshaped.Shape = false;
  EXPECT_EQ(CaptureOfPress(press, 510, unshaped), PulsesToCapture(press, 55, 510));
  EXPECT_EQ(Heard(press, unshaped), "no-timing");
  EXPECT_EQ(Heard(press), tests::kSonyBits);
}

}  // namespace
}  // namespace keplo
