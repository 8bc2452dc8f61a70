#include "signal/recorded_press.h"

#include <gtest/gtest.h>

#include "signal_builder.h"

namespace keplo {
namespace {

using tests::Bytes;
using tests::NecRuns;
using tests::Padded;
using tests::Rc5Runs;
using tests::Runs;
using tests::SonyRuns;

const std::string kNecDigits = "00000000111111110110100010010111";

std::vector<int> Joined(std::vector<int> runs, const std::vector<int>& more) {
  runs.insert(runs.end(), more.begin(), more.end());
  return runs;
}

/// Two frames of one press, the silence between them long enough to end a frame.
std::vector<int> Twice(const std::vector<int>& first, const std::vector<int>& second) {
  return Joined(Joined(first, {400}), second);
}

RecordReading Recorded(const std::vector<int>& runs) {
  SignalState state;
  return ReadRecordedCapture(Padded(Bytes(Runs(runs)), kRecordCaptureBytes), state);
}

TEST(RecordRoad, ExplainsAPressOfEachKind) {
  struct Case {
    std::string Name;
    std::vector<int> Runs;
    std::int16_t Kind;
    std::string Code;
    bool Repeats;
    std::optional<int> SyncType;
    std::optional<char> Toggle;
    std::optional<CodeValues> Values;
  };
  const std::vector<int> nec = NecRuns(kNecDigits);
  const std::vector<int> ditto = {160, 40, 10};
  const std::vector<Case> cases = {
      {"NEC and its short repeat", Twice(nec, ditto), kNec, kNecDigits, false, 2, {}, {}},
      {"NEC twice", Twice(nec, nec), kNec, kNecDigits, true, 2, {}, {}},
      {"NEC, the repeat without a leader",
       Twice(nec, {nec.begin() + 2, nec.end()}),
       kNec,
       kNecDigits,
       true,
       1,
       {},
       {}},
      {"SONY",
       Twice(SonyRuns("101000100010"), SonyRuns("101000100010")),
       kSony,
       "101000100010",
       true,
       2,
       {},
       CodeValues{8, 69}},
      {"SONY of 15 digits",
       SonyRuns("101010010010000"),
       kSony,
       "101010010010000",
       false,
       2,
       {},
       CodeValues{9, 21}},
      {"SONY of 13 digits", SonyRuns("1010100100001"), kSony, "1010100100001", false, 2, {}, {}},
      {"RC5, address 5, command 12", Rc5Runs("11000101001100"), kRc5, "11000101001100", true, 0, '0',
       CodeValues{5, 76}},
      {"RC5 with its toggle digit set", Rc5Runs("11100101001101"), kRc5, "11000101001101", true, 0, '1',
       CodeValues{5, 77}},
      {"RC5 alone", Rc5Runs("11000101001101", 1), kRc5, "11000101001101", false, 0, '0', CodeValues{5, 77}},
      {"RC5 of 13 digits", Rc5Runs("1100010100110"), kRc5, "1100010100110", true, 0, '0', {}},
      {"a short code that repeats",
       Twice(SonyRuns("010110"), SonyRuns("010110")),
       kSony,
       "010110",
       true,
       2,
       {},
       {}},
      {"a single frame of seven digits", SonyRuns("0010100"), kSony, "0010100", false, 2, {}, {}},
  };
  for (const Case& c : cases) {
    const RecordReading reading = Recorded(c.Runs);
    EXPECT_EQ(reading.Ended, RecordStage::Code) << c.Name;
    EXPECT_EQ(reading.ProtoKind, c.Kind) << c.Name;
    EXPECT_EQ(reading.Code, c.Code) << c.Name << ": " << reading.Decoded;
    EXPECT_EQ(reading.Repeats, c.Repeats) << c.Name << ": " << reading.Decoded;
    EXPECT_EQ(reading.SyncType, c.SyncType) << c.Name << ": " << reading.Decoded;
    EXPECT_EQ(reading.Toggle, c.Toggle) << c.Name;
    EXPECT_TRUE(reading.Values == c.Values) << c.Name;
  }
}

TEST(RecordRoad, EndsWhereItMust) {
  struct Case {
    std::string Name, Capture;
    RecordStage Ended;
    std::string Code;
  };
  const auto padded = [](const std::string& bytes) { return Padded(bytes, kRecordCaptureBytes); };
  const auto press = [&](const std::vector<int>& runs) { return padded(Bytes(Runs(runs))); };
  const std::vector<Case> cases = {
      {"silence", padded(""), RecordStage::Empty, ""},
      {"no bytes at all", "", RecordStage::Empty, ""},
      {"19 bytes and silence", padded(std::string(19, '\xFF')), RecordStage::Short, ""},
      {"20 bytes and silence", padded(std::string(20, '\xFF')), RecordStage::NoTiming, ""},
      // Nothing is cut off a full buffer, so its length does not count.
      {"23 bytes alone", Bytes(Runs(SonyRuns("000100"))), RecordStage::Fragment, "000100"},
      {"all runs alike", press(Joined({60, 60}, std::vector<int>(41, 10))), RecordStage::Unknown, ""},
      {"a single frame of six digits", press(SonyRuns("010110")), RecordStage::Fragment, "010110"},
  };
  for (const Case& c : cases) {
    SignalState state;
    const RecordReading reading = ReadRecordedCapture(c.Capture, state);
    EXPECT_EQ(reading.Ended, c.Ended) << c.Name;
    EXPECT_EQ(reading.Code, c.Code) << c.Name;
    EXPECT_FALSE(reading.Toggle || reading.Values) << c.Name;
  }
}

TEST(RecordRoad, KeepsAnUnknownSignalsBaseTime) {
  const RecordReading reading = Recorded(Joined({60, 60}, std::vector<int>(41, 10)));
  EXPECT_EQ(reading.PulseUs(), reading.BaseT * 55);
  EXPECT_EQ(reading.ProtoKind, kUnknown);
}

TEST(RecordRoad, ComparesASecondFrameThatTheBufferCuts) {
  const std::vector<int> sony = SonyRuns("101010010000");
  const std::string samples = Runs(Twice(sony, {sony.begin(), sony.end() - 6}));
  Timing measured;
  const RecordReading reading = ReadRecordedSamples(samples, measured);
  EXPECT_EQ(reading.Code, "101010010000");
  EXPECT_EQ(reading.SecondFrame, "10101001");  // the mark that ends the samples is no run
  EXPECT_FALSE(reading.Repeats);
}

TEST(RecordRoad, ShowsHalfBitsThatCannotBePaired) {
  std::vector<int> runs = Rc5Runs("11000101001101", 1);
  runs[2] = 48;
  EXPECT_NE(Recorded(runs).Code.find_first_of("xy"), std::string::npos);
}

TEST(WalkRecording, LeavesTheRunThatEndsTheSamplesOut) {
  struct Case {
    std::vector<int> Runs;
    std::string Symbols, Ones, Zeros;
  };
  const std::vector<Case> cases = {
      {{160, 80, 10, 30, 10, 101}, "Gg10001g", "-160-10-10", "-80-30"},
      {{160, 80, 10, 100}, "Gg1", "-160-10", "-80"},
      {{160, 80, 10}, "Gg", "-160", "-80"},
      {{0, 20, 10, 120}, "1001g", "-0-10", "-20"},
      {{}, "", "", ""},
  };
  for (const Case& c : cases) {
    const RecordedRuns runs = WalkRecording(Runs(c.Runs), 10);
    EXPECT_EQ(runs.Symbols, c.Symbols);
    EXPECT_EQ(RunLengthsText(runs.Ones), c.Ones) << c.Symbols;
    EXPECT_EQ(RunLengthsText(runs.Zeros), c.Zeros) << c.Symbols;
  }
}

TEST(TrimRecording, KeepsThirtySilentBytesBehindTheSignal) {
  std::string capture = Padded(std::string(60, '\x80'), kRecordCaptureBytes);
  EXPECT_EQ(TrimRecording(capture), RecordStage::Code);
  EXPECT_EQ(capture.size(), 90U);
  std::string full(kRecordCaptureBytes, '\x01');
  EXPECT_EQ(TrimRecording(full), RecordStage::Code);
  EXPECT_EQ(full.size(), kRecordCaptureBytes);
}

TEST(BinToInt, ReadsTheHighestDigitFirst) {
  EXPECT_EQ(BinToInt(""), 0);
  EXPECT_EQ(BinToInt("00101"), 5);
  EXPECT_EQ(BinToInt("11111111"), 255);
}

}  // namespace
}  // namespace keplo
