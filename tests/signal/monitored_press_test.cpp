#include "signal/monitored_press.h"

#include <gtest/gtest.h>

#include "signal/recorded_press.h"
#include "signal_builder.h"

namespace keplo::tests {
namespace {

TEST(MonitoredPress, EndsWhereItMust) {
  struct Case {
    std::string Name;
    std::string Capture;
    Stage Ended;
    std::string Digits;
  };
  const std::string nec13 = "0000011110010";
  const std::string nec = Bytes(Runs(NecRuns(kNecDigits)));
  std::vector<int> alike(43, 10);
  alike[0] = alike[1] = 60;
  const std::vector<Case> cases = {
      {"silence", Padded(""), Stage::Empty, ""},
      {"no bytes at all", "", Stage::Empty, ""},
      {"49 bytes", nec.substr(0, 49), Stage::Short, ""},
      {"noise of single samples", Padded(std::string(400, '\xAA')), Stage::NoTiming, ""},
      {"buffer full in mid-mark", Capture(Then(NecRuns(kNecDigits), 1600, {4000})), Stage::EndsInMark, ""},
      {"one RC5 frame", Capture(Rc5Runs("11000000010000", 1)), Stage::NoFrame, ""},
      {"all runs alike", Capture(alike), Stage::Unknown, ""},
      {"12 digits of pulse distance", Capture(NecRuns(nec13.substr(1))), Stage::Length, nec13.substr(1)},
      {"13 digits of pulse distance", Capture(NecRuns(nec13)), Stage::Code, nec13},
      {"NEC", Capture(NecRuns(kNecDigits)), Stage::Code, kNecDigits},
      {"SONY", Capture(SonyRuns("101010010000")), Stage::Code, "101010010000"},
      {"SONY of 13 digits", Capture(SonyRuns("1010100100001")), Stage::Length, "1010100100001"},
      {"SONY of 11 digits", Capture(SonyRuns("10101001000")), Stage::Length, "10101001000"},
      {"50 bytes", nec.substr(0, 50), Stage::Unknown, ""},
      {"RC5 of 15 digits", Capture(Rc5Runs("110000000100001")), Stage::Length, "110000000100001"},
      {"RC5, read from its second frame", Capture(Rc5Runs("11100000010001")), Stage::Code, "11000000010001"},
      {"RC5 that ends in a space", Capture(Rc5Runs("11000000010000")), Stage::Code, "11000000010000"},
      {"RC5 of 13 digits", Capture(Rc5Runs("1100000001000")), Stage::Length, "1100000001000"},
      {"NEC whose head was lost, then its repeat",
       Capture(Then({10, 30, 11, 11, 10, 10, 11, 11, 10}, 700, NecRuns(kNecDigits))), Stage::Code,
       kNecDigits},
  };
  // One state and one reading for all, as in a monitor: nothing of a capture may reach the next one.
  SignalState state;
  MonitorReading reading;
  for (const Case& c : cases) {
    ReadCapture(c.Capture, state, Analysis::First, reading);
    EXPECT_EQ(StageName(reading.Ended), StageName(c.Ended)) << c.Name;
    EXPECT_EQ(reading.Digits, c.Digits) << c.Name;
  }
}

/// Of two analyses that read nothing, the one that has come further tells why.
TEST(MonitoredPress, NamesTheRuleThatEndedIt) {
  const std::string ones(20, '1'), zeros = "0011";
  const std::vector<int> differ = Then(NecRuns(ones + zeros), 700, NecRuns(ones + "0001"));
  std::vector<int> tenths = {60, 30};  // spaces of three lengths, the shortest of which is rare
  for (int i = 0; i < 24; ++i) tenths.insert(tenths.end(), {8, i % 12 == 0 ? 8 : i % 2 == 0 ? 20 : 32});
  tenths.push_back(8);
  const std::tuple<std::vector<int>, Stage, bool> cases[] = {
      {differ, Stage::Doubtful, true}, {Then(tenths, 900, tenths), Stage::Unknown, false}};
  for (const auto& [runs, ended, isDoubtful] : cases) {
    SignalState state;
    EXPECT_EQ(StageName(ReadCapture(Capture(runs), state).Ended), "no-timing");
    EXPECT_EQ(StageName(ReadCapture(Capture(runs), state, Analysis::Second).Ended), StageName(ended));
    const RecordReading recorded = ReadRecordedCapture(Capture(runs), state, Analysis::Second);
    EXPECT_TRUE(recorded.Ended == RecordStage::Unknown && recorded.BaseT > 0);
    EXPECT_EQ(recorded.IsDoubtful, isDoubtful);
  }
}

TEST(TrimCapture, KeepsAHundredSilentBytesAfterTheSignal) {
  std::string early = Padded("\x01\x02\x03");
  EXPECT_EQ(TrimCapture(early), Stage::Code);
  EXPECT_EQ(early.size(), 103U);
  std::string late = Padded("", 509) + "\x01";
  EXPECT_EQ(TrimCapture(late), Stage::Code);
  EXPECT_EQ(late.size(), 510U);
}

}  // namespace
}  // namespace keplo::tests
