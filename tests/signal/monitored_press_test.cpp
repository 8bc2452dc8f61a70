#include "signal/monitored_press.h"

#include <gtest/gtest.h>

#include "signal/decode.h"
#include "signal/sample_bits.h"
#include "signal_builder.h"

namespace keplo {
namespace {

using tests::Bytes;
using tests::NecRuns;
using tests::Padded;
using tests::Rc5Runs;
using tests::Runs;
using tests::SonyRuns;

TEST(SamplesToBits, WritesTheEarliestSampleFirst) {
  using namespace std::string_literals;
  EXPECT_EQ(SamplesToBits("\xF0\x01"s), "1111000000000001");
  EXPECT_EQ(SamplesToBits("\x7F\xFF\x00"s), "011111111111111100000000");
  EXPECT_EQ(SamplesToBits(""), "");
}

const std::string kNecDigits = "00000000111111110110100010010111";

std::vector<int> Then(std::vector<int> runs, const std::vector<int>& more) {
  runs.insert(runs.end(), more.begin(), more.end());
  return runs;
}

TEST(MonitorRoad, EndsWhereItMust) {
  struct Case {
    std::string Name;
    std::string Capture;
    Stage Ended;
    std::string Digits;
  };
  const auto press = [](const std::vector<int>& runs) { return Padded(Bytes(Runs(runs))); };
  const std::string nec13 = "0000011110010";
  const std::vector<Case> cases = {
      {"silence", Padded(""), Stage::Empty, ""},
      {"no bytes at all", "", Stage::Empty, ""},
      {"49 bytes", Bytes(Runs(NecRuns(kNecDigits))).substr(0, 49), Stage::Short, ""},
      {"noise of single samples", Padded(std::string(400, '\xAA')), Stage::NoTiming, ""},
      {"buffer full in mid-mark", press(Then(NecRuns(kNecDigits), {1600, 4000})), Stage::EndsInMark, ""},
      {"one RC5 frame", press(Rc5Runs("11000000010000", 1)), Stage::NoFrame, ""},
      {"all runs alike", press(Then({60, 60}, std::vector<int>(41, 10))), Stage::Unknown, ""},
      {"12 digits of pulse distance", press(NecRuns(nec13.substr(1))), Stage::Length, nec13.substr(1)},
      {"13 digits of pulse distance", press(NecRuns(nec13)), Stage::Code, nec13},
      {"NEC", press(NecRuns(kNecDigits)), Stage::Code, kNecDigits},
      {"SONY", press(SonyRuns("101010010000")), Stage::Code, "101010010000"},
      {"SONY of 13 digits", press(SonyRuns("1010100100001")), Stage::Length, "1010100100001"},
      {"SONY of 11 digits", press(SonyRuns("10101001000")), Stage::Length, "10101001000"},
      {"50 bytes", Bytes(Runs(NecRuns(kNecDigits))).substr(0, 50), Stage::Unknown, ""},
      {"RC5 of 15 digits", press(Rc5Runs("110000000100001")), Stage::Length, "110000000100001"},
      {"RC5, read from its second frame", press(Rc5Runs("11100000010001")), Stage::Code, "11000000010001"},
      {"RC5 that ends in a space", press(Rc5Runs("11000000010000")), Stage::Code, "11000000010000"},
      {"RC5 of 13 digits", press(Rc5Runs("1100000001000")), Stage::Length, "1100000001000"},
      {"NEC whose head was lost, then its repeat",
       press(Then({10, 30, 11, 11, 10, 10, 11, 11, 10, 700}, NecRuns(kNecDigits))), Stage::Code, kNecDigits},
  };
  for (const Case& c : cases) {
    SignalState state;
    const MonitorReading reading = ReadCapture(c.Capture, state);
    EXPECT_EQ(StageName(reading.Ended), StageName(c.Ended)) << c.Name;
    EXPECT_EQ(reading.Digits, c.Digits) << c.Name;
  }
}

TEST(TrimCapture, KeepsAHundredSilentBytesBehindTheSignal) {
  std::string early = Padded("\x01\x02\x03");
  EXPECT_EQ(TrimCapture(early), Stage::Code);
  EXPECT_EQ(early.size(), 103U);

  std::string late = Padded("") + "\x01";
  late.erase(0, 1);
  EXPECT_EQ(TrimCapture(late), Stage::Code);
  EXPECT_EQ(late.size(), 510U);
}

}  // namespace
}  // namespace keplo
