#include "signal/send_bits.h"

#include <gtest/gtest.h>

#include "failure.h"
#include "signal/pattern_sets.h"
#include "signal/sample_bits.h"
#include "signal/send_as.h"

namespace keplo {
namespace {

ProtocolParams Params(std::int16_t kind, int repeat, int syncRepeat) {
  const PatternSet& set = *FindPatternSet(kind);
  ProtocolParams params;
  params.BITG = set.BITG;
  params.BIT0 = set.BIT0;
  params.BIT1 = set.BIT1;
  params.REPEAT = static_cast<std::int16_t>(repeat);
  params.GREPEAT = static_cast<std::int16_t>(syncRepeat);
  return params;
}

std::string Sent(std::int16_t kind, std::string code, ProtocolParams params) {
  bool toggle = false;
  return BuildSendBits(code, kind, params, toggle);
}

std::string FourTimes(const std::string& slots) { return slots + slots + slots + slots; }

std::string Silence(std::size_t slots) { return std::string(slots, '0'); }

TEST(BuildSendBits, SendsTheFrameAndTheRepeatsOfItsProtocol) {
  const std::string leader = "111111111111111100000000";
  struct Case {
    std::int16_t Kind;
    std::string Code;
    int Repeat, SyncRepeat;
    std::string Slots;
  };
  const std::vector<Case> cases = {
      {kNec, "10", 0, 1, leader + "1000101"},
      {kNec, "10", 0, 2, leader + "1000101" + FourTimes("00" + std::string(16, '1') + "00001")},
      {kNec, "10", 1, 1, leader + "1000101" + FourTimes("01000101")},
      {kNec, "", 0, 0, leader + "1"},
      {kSony, "", 2, 1, "1111" + FourTimes("00")},
      {kSony, "10", 50, 50, "111101101" + FourTimes(Silence(50) + "111101101")},
      {kSony, "1 0x", 0, 0, "111101101"},
      {kRc5, "11000", 50, 0, "0101011010" + FourTimes(Silence(50) + "0101011010")},
      {kRc5, "11000", 3, 50, "0101011010" + FourTimes("0000101011010")},
      {kRc5, "11", 0, 0, "0101"},
      {kNec, "1", -5, 0, leader + "10001" + FourTimes("10001")},  // no silence is shorter than none
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Sent(c.Kind, c.Code, Params(c.Kind, c.Repeat, c.SyncRepeat)), c.Slots)
        << c.Code << " REPEAT " << c.Repeat << " GREPEAT " << c.SyncRepeat;
  }
}

TEST(BuildSendBits, SendsWhatTheParametersAloneDoNotTell) {
  bool toggle = false;
  ProtocolParams params = Params(kRc6, 0, 0);
  params.SENDAS = kSendAsRc6;
  std::string code = "10000000000000001100";
  const std::string head =
                        "11111100"
                        "10010101",
                    tail =
                        "0101010101010101"
                        "0101010110100101";
  EXPECT_EQ(BuildSendBits(code, kCustom, params, toggle), head + "1100" + tail);
  EXPECT_EQ(BuildSendBits(code, kCustom, params, toggle), head + "0011" + tail);
  ProtocolParams other = Params(kRc5, 0, 0);
  other.SENDAS = "7 " + NoteOfWay(code, kSendAsRc6);
  EXPECT_EQ(BuildSendBits(code, kRc5, other, toggle), head + "1100" + tail) << "in another section";
  EXPECT_EQ(SlotOf(code, kRc5, other), 444);
  other = Params(kNec, 0, 72);
  other.SENDPLS = 888;
  other.SENDAS = kSendAsRc6;
  EXPECT_TRUE(BuildSendBits(code, kNec, other, toggle)
                  .starts_with(head + "0011" + tail + Silence(144) + head + "0011" + tail))
      << "whose silence stands in GREPEAT";
  code = "101";
  EXPECT_EQ(BuildSendBits(code, kCustom, params, toggle), "11111100100110") << "no RC6 code";

  params = Params(kNec, 0, 30);
  params.SENDAS = SendInTurns(2);
  code = "1001";
  const std::string first = params.BITG + "1000101", second = params.BITG + "1010001", gap = Silence(30);
  const std::string turn = first + gap + second;
  EXPECT_EQ(BuildSendBits(code, kNec, params, toggle), turn + gap + turn + gap + turn);
  ProtocolParams reversed = params;
  reversed.SENDAS = SendInTurns(2, true);
  EXPECT_TRUE(BuildSendBits(code, kNec, reversed, toggle).starts_with(second + gap + first)) << "as heard";
  EXPECT_EQ(WayOf(code, NoteOfWay("0110", reversed.SENDAS)), "") << "a note on another code";
  reversed.BIT1 = "11";
  EXPECT_THROW(BuildSendBits(code, kNec, reversed, toggle), std::invalid_argument) << "no pulse distances";
  code = "10";
  EXPECT_EQ(BuildSendBits(code, kNec, params, toggle).substr(0, first.size()), first) << "a single frame";
}

TEST(BuildSendBits, SendsFramesOfAnyLengthAtOnePeriod) {
  const std::string frame = "111101101", ditto = std::string(16, '1') + "00001";
  ProtocolParams params = Params(kSony, 50, 50);
  params.SENDAS = "6 PERIOD30 " + NoteOfWay("1", "");
  EXPECT_EQ(Sent(kSony, "10", params), frame + FourTimes(Silence(21) + frame));
  EXPECT_EQ(Sent(kSony, "", params), "1111" + FourTimes(Silence(26) + "1111"));
  params.GREPEAT = 1;
  const std::string body = "01101";
  EXPECT_EQ(Sent(kSony, "10", params),
            frame + Silence(21) + body + Silence(25) + body + Silence(25) + body + Silence(25) + body);
  params = Params(kNec, 0, 50);
  params.SENDAS = SendEvery(40);
  EXPECT_EQ(Sent(kNec, "10", params).substr(24), "1000101" + Silence(16) + ditto + Silence(19) + ditto +
                                                     Silence(19) + ditto + Silence(19) + ditto);
}

TEST(BuildSendBits, FlipsTheToggleDigitAndSetsTheClosingSlot) {
  ProtocolParams params = Params(kRc5, 0, 0);
  bool toggle = false;
  std::string sent;
  for (const std::int16_t kind : {kRc5, kRc5, kNec, kCustom, kRc5}) {
    std::string code = "11000000001100";
    BuildSendBits(code, kind, params, toggle);
    sent += std::string(1, code[2]) + params.BitTail + " ";
  }
  EXPECT_EQ(sent, "1 0 01 0 1 ");
}

TEST(BuildSendBits, RefusesWhatIsTooLongAheadOfAnyChange) {
  ProtocolParams params = Params(kRc5, 50, 0);
  params.BIT1 = std::string(20'000, '1');
  bool toggle = false;
  std::string code = "11000000001100";
  EXPECT_THROW(BuildSendBits(code, kRc5, params, toggle), std::length_error);
  EXPECT_EQ(code, "11000000001100");
  EXPECT_FALSE(toggle);
  EXPECT_NO_THROW(Sent(kNec, std::string(32, '1'), Params(kNec, 32767, 32767)));
  params.REPEAT = 0;
  EXPECT_NO_THROW(Sent(kRc5, code, params)) << "sent once, it fits";
}

TEST(BitsToChars, PacksTheFirstSlotHighest) {
  using namespace std::string_literals;
  EXPECT_EQ(BitsToChars("1000000000000001"), "\x80\x01"s);
  EXPECT_EQ(BitsToChars("111"), "\xE0"s);
  EXPECT_EQ(BitsToChars(""), "");
  for (const auto& [slots, padded] : {std::pair{0U, 0U}, {24U, 24U}, {25U, 32U}})
    EXPECT_EQ(PadToBytes(Silence(slots)), Silence(padded));
}

TEST(CaptureOfSlots, DrawsEachSlotAtTheNominalSampleTime) {
  const auto samples = [](const char* slots, int pulse) {
    return SamplesToBits(CaptureOfSlots(slots, pulse));
  };
  EXPECT_EQ(samples("10", 550), std::string(10, '1') + Silence(22));
  EXPECT_EQ(samples("1", 880), std::string(16, '1') + Silence(16));
  for (const int pulse : {27, 0, -550}) EXPECT_EQ(samples("1", pulse), "");
  EXPECT_EQ(samples("11", 2'000'000'000).size(), 32'760U);
}

}  // namespace
}  // namespace keplo
