#include "line/replay_line.h"

#include <gtest/gtest.h>

#include "doubles/test_clock.h"
#include "press_builder.h"
#include "signal/timing.h"
#include "signal/zone_link.h"

namespace keplo::tests {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr std::int32_t kDelay = 10;

std::vector<Recording> TwoFiles() {
  return {{"a", {Clean(kSony, kSonyBits)}}, {"b", {RawBytes{"\x01\x02\x03"s}, Clean(kNec, kNecBits)}}};
}

std::string Monitored(ReplayLine& line, std::size_t bytes = 510) {
  std::string buffer(bytes, '\0');
  line.IRMonitor(buffer, kDelay);
  return buffer;
}

constexpr std::int16_t kStandard = 0;  // the DCDStandard receiver

TEST(ReplayLine, PlaysOnePressACaptureAndTellsWhich) {
  ReplayLine line(TwoFiles(), kStandard);
  EXPECT_EQ(line.LastPress(), nullptr);
  std::vector<std::string> played;
  while (!line.Done()) {
    EXPECT_EQ(line.DCD(), 0) << "away from rest while a press is pending";
    const std::string capture = Monitored(line);
    EXPECT_NE(capture, std::string(510, '\0'));
    played.push_back(line.LastPress()->Path + std::to_string(line.LastPress()->Number));
  }
  EXPECT_EQ(played, (std::vector<std::string>{"a1", "b1", "b2"}));
  EXPECT_EQ(line.DCD(), 1);
  EXPECT_EQ(Monitored(line), std::string(510, '\0')) << "nothing is pending";
}

TEST(ReplayLine, RestsAtTheLevelOfItsReceiver) {
  std::int16_t receiver = 1;
  ReplayLine line({}, receiver);
  EXPECT_EQ(line.DCD(), 0);
  receiver = 0;
  EXPECT_EQ(line.DCD(), 1);
}

TEST(ReplayLine, RecordsUpToTheLimit) {
  ReplayLine line(TwoFiles(), kStandard);
  std::string buffer(1000, 'x');
  EXPECT_NE(line.IRRecordN(buffer, kDelay, 100), 0) << "either receiver's call takes the press";
  const std::string expected = SignalOfPress(Clean(kSony, kSonyBits), 100, {});
  const std::size_t signal = expected.find_last_not_of('\0') + 1;
  EXPECT_EQ(buffer.substr(0, signal), expected.substr(0, signal));
  EXPECT_EQ(buffer.substr(signal), std::string(1000 - signal, 'x'))
      << "bytes behind the signal are the caller's";
  EXPECT_NE(line.IRRecord(buffer, kDelay, 2), 0);
  EXPECT_EQ(buffer.substr(0, 2), "\x01\x02");
  EXPECT_EQ(line.IRRecord(buffer, kDelay, 0), 0) << "no room takes no press";
  EXPECT_NE(line.IRRecord(buffer, kDelay, 1000), 0);
  EXPECT_EQ(line.IRRecord(buffer, kDelay, 1000), 0) << "no press is left";
}

TEST(ReplayLine, HoldsTheKeyOfTheLastPressDown) {
  const auto owned = std::make_shared<TestClock>();
  TestClock& clock = *owned;
  ReplayLine line({{"a", {Clean(kNec, kNecBits), Clean(kSony, kSonyBits)}}}, kStandard);
  line.PlayAgainst(owned);
  line.HoldLastPress(3);
  std::string buffer(100, 'x');
  for (const std::size_t press : {1, 2, 2, 2}) {
    EXPECT_NE(line.IRRecord(buffer, kDelay, 100), 0);
    EXPECT_EQ(line.LastPress()->Number, press);
  }
  EXPECT_EQ(buffer.back(), '\0') << "the silence between two frames belongs to the signal";
  EXPECT_LT(clock.Time, 2 * ReplayLine::kPressPause + 4 * 60ms) << "the next frame follows without a pause";
  EXPECT_EQ(line.IRRecord(buffer, kDelay, 100), 0) << "the key was let go";
}

TEST(ReplayLine, SamplesMoreSlowlyAtALargerDelay) {
  ReplayLine line({{"a", {Clean(kSony, kSonyBits), Clean(kSony, kSonyBits)}}}, kStandard);
  std::string buffer(510, '\0');
  line.IRMonitorN(buffer, kDelay + 20);
  LineOptions slower;
  slower.SampleTime = 65;
  EXPECT_EQ(buffer, CaptureOfPress(Clean(kSony, kSonyBits), 510, slower));
  line.IRMonitor(buffer, -1'000'000);
  EXPECT_EQ(buffer.substr(0, 300), std::string(300, '\xFF')) << "no sample takes less than a microsecond";
}

TEST(ReplayLine, PlaysAgainstAClock) {
  const auto owned = std::make_shared<TestClock>();
  TestClock& clock = *owned;
  ReplayLine line(TwoFiles(), kStandard);
  line.PlayAgainst(owned);
  EXPECT_EQ(line.DCD(), 1) << "the first press comes behind a pause";
  clock.Time += 500ms;
  EXPECT_EQ(line.DCD(), 0);
  Monitored(line);
  // Three SONY frames, 45 ms from one to the next, the last of them 19.2 ms long.
  EXPECT_NEAR(static_cast<double>(clock.Time.count()), 500'000 + 109'200, 8 * 55);
  EXPECT_EQ(line.DCD(), 1);

  std::string buffer(510, '\0');
  const auto before = clock.Time;
  EXPECT_NE(line.IRRecord(buffer, kDelay, 510), 0);
  EXPECT_GE(clock.Time - before, 500ms) << "a recording waits for its press";

  clock.Time = 0s;
  line.SpeakBeep(600, 1000);
  line.uDelay(200'000);
  line.IRSend("\xAA\xAA", 500, 0);
  EXPECT_EQ(clock.Time, 1s + 200ms + 8ms);
}

TEST(ReplayLine, PausesBehindAPressThatIsLongerThanACapture) {
  const auto clock = std::make_shared<TestClock>();
  ReplayLine line({{"a", {Clean(kNec, kNecBits, 0, 10), Clean(kSony, kSonyBits)}}}, kStandard);
  line.PlayAgainst(clock);
  while (!line.Done()) {
    clock->Time += 2ms;
    if (line.DCD() == 0) Monitored(line);
  }
  EXPECT_GE(clock->Time, 2 * ReplayLine::kPressPause + 10 * 108ms + 100ms);
}

TEST(ReplayLine, WritesDownWhatIsSent) {
  ReplayLine line({}, kStandard);
  EXPECT_EQ(line.OpenCom(31), 1);
  line.DTR(-1);
  line.RTS(-1);
  line.TXD(-1);
  line.TXD(0);
  line.SetMode(2);
  line.IRSend("\xA0\0"s, 889, 9);
  line.SpeakBeep(5000, 50);
  line.SendChr('P');
  line.uDelay(200'000);
  const LineOutput& output = line.Output();
  EXPECT_EQ(output.Dtr, -1);
  EXPECT_EQ(output.Rts, -1);
  EXPECT_EQ(output.Txd, 0);
  EXPECT_EQ(output.Mode, 2);
  ASSERT_EQ(output.Signals.size(), 1U);
  EXPECT_EQ(output.Signals[0].Bytes, "\xA0\0"s);
  EXPECT_EQ(output.Signals[0].Pulse, 889);
  EXPECT_EQ(output.Signals[0].InterfaceType, 9);
  ASSERT_EQ(output.Beeps.size(), 1U);
  EXPECT_EQ(output.Beeps[0].Frequency, 5000);
  EXPECT_EQ(output.Characters, "P");
}

TEST(ReplayLine, AnswersForTheZoneHardware) {
  ReplayLine line({}, kStandard);
  line.AnswerWith("\0\x48\x2B"s);  // a time-out, an echo, then zone 4
  EXPECT_EQ(QueryZone(line), 4);
  EXPECT_EQ(line.Output().Characters, "PPP");
  EXPECT_EQ(QueryZone(line), kNoZone);

  for (std::int16_t zone = 1; zone <= 8; ++zone) {
    line.AnswerWith(std::string(1, static_cast<char>(ExpandGenericBits(zone, "11") - 64)));
    EXPECT_EQ(QueryZone(line), zone);
  }
}

}  // namespace
}  // namespace keplo::tests
