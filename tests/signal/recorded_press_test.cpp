#include "signal/recorded_press.h"

#include <gtest/gtest.h>

#include "signal_builder.h"

namespace keplo::tests {
namespace {

using RunVector = std::vector<int>;

/// Two frames of one press, the silence between them long enough to end a frame.
RunVector Twice(const RunVector& first, const RunVector& second) { return Then(first, 400, second); }
RunVector Twice(const RunVector& frame) { return Twice(frame, frame); }

TEST(RecordedPress, ExplainsAPressOfEachKind) {
  struct Case {
    std::string Name;
    RunVector Press;
    std::int16_t Kind;
    std::string Code;
    bool Repeats;
    int SyncType;
    std::optional<char> Toggle = {};
    std::optional<CodeValues> Values = {};
  };
  const RunVector nec = NecRuns(kNecDigits);
  const RunVector ditto = {160, 40, 10};
  const std::string sony15 = "101010010010000";
  const std::vector<Case> cases = {
      {"NEC and its short repeat", Twice(nec, ditto), kNec, kNecDigits, false, 2},
      {"NEC twice", Twice(nec), kNec, kNecDigits, true, 2},
      {"NEC, then without a leader", Twice(nec, {nec.begin() + 2, nec.end()}), kNec, kNecDigits, true, 1},
      {"SONY", Twice(SonyRuns("101000100010")), kSony, "101000100010", true, 2, {}, CodeValues{8, 69}},
      {"SONY of 15 digits", SonyRuns(sony15), kSony, sony15, false, 2, {}, CodeValues{9, 21}},
      {"SONY of 13 digits", SonyRuns("1010100100001"), kSony, "1010100100001", false, 2},
      {"RC5", Rc5Runs("11000101001100"), kRc5, "11000101001100", true, 0, '0', CodeValues{5, 76}},
      {"RC5 toggled", Rc5Runs("11100101001101"), kRc5, "11000101001101", true, 0, '1', CodeValues{5, 77}},
      {"RC5 of 13 digits", Rc5Runs("1100010100110"), kRc5, "1100010100110", true, 0, '0'},
      {"a short code that repeats", Twice(SonyRuns("010110")), kSony, "010110", true, 2},
      {"a single frame of seven digits", SonyRuns("0010100"), kSony, "0010100", false, 2},
      {"RC5 alone", Rc5Runs("11000101001101", 1), kRc5, "11000101001101", false, 0, '0', CodeValues{5, 77}},
  };
  // One state and one reading for all, as in a window: nothing of a recording may reach the next one.
  SignalState state;
  RecordReading reading;
  for (const Case& c : cases) {
    ReadRecordedCapture(Capture(c.Press, kRecordCaptureBytes), state, Analysis::First, reading);
    EXPECT_EQ(reading.Ended, RecordStage::Code) << c.Name;
    EXPECT_EQ(reading.ProtoKind, c.Kind) << c.Name;
    EXPECT_EQ(reading.Code, c.Code) << c.Name << ": " << reading.Decoded;
    EXPECT_EQ(reading.Repeats, c.Repeats) << c.Name << ": " << reading.Decoded;
    EXPECT_EQ(reading.SyncType, c.SyncType) << c.Name << ": " << reading.Decoded;
    EXPECT_EQ(reading.Toggle, c.Toggle) << c.Name;
    EXPECT_TRUE(reading.Values == c.Values) << c.Name;
  }
  ReadRecordedCapture("", state, Analysis::First, reading);
  EXPECT_TRUE(reading.Code.empty() && reading.Runs.Ones.empty() && !reading.Values && !reading.SyncType);
}

TEST(RecordedPress, EndsWhereItMust) {
  struct Case {
    std::string Name, Capture;
    RecordStage Ended;
    std::string Code;
  };
  RunVector alike(43, 10);
  alike[0] = alike[1] = 60;
  const auto press = [](const RunVector& runs) { return Capture(runs, kRecordCaptureBytes); };
  const std::vector<Case> cases = {
      {"silence", Padded("", kRecordCaptureBytes), RecordStage::Empty, ""},
      {"no bytes at all", "", RecordStage::Empty, ""},
      {"19 bytes and silence", Padded(std::string(19, '\xFF'), kRecordCaptureBytes), RecordStage::Short, ""},
      {"20 bytes and silence", Padded(std::string(20, '\xFF'), kRecordCaptureBytes), RecordStage::NoTiming,
       ""},
      // Nothing is cut off a full buffer, so its length does not count.
      {"23 bytes alone", Bytes(Runs(SonyRuns("000100"))), RecordStage::Fragment, "000100"},
      {"all runs alike", press(alike), RecordStage::Unknown, ""},
      {"a single frame of six digits", press(SonyRuns("010110")), RecordStage::Fragment, "010110"},
  };
  for (const Case& c : cases) {
    SignalState state;
    const RecordReading reading = ReadRecordedCapture(c.Capture, state);
    EXPECT_EQ(reading.Ended, c.Ended) << c.Name;
    EXPECT_EQ(reading.Code, c.Code) << c.Name;
    EXPECT_EQ(reading.ProtoKind == kUnknown, c.Code.empty()) << c.Name;
    EXPECT_EQ(reading.PulseUs() > 0, reading.Ended >= RecordStage::Unknown) << c.Name;
    EXPECT_FALSE(reading.Toggle || reading.Values) << c.Name;
  }
}

TEST(RecordedPress, ComparesASecondFrameThatTheBufferCuts) {
  const RunVector sony = SonyRuns("101010010000");
  std::string samples = Runs(Twice(sony, {sony.begin(), sony.end() - 6}));
  while (samples.size() % kBitsPerByte != 0) samples += '1';
  SignalState state;
  const RecordReading reading = ReadRecordedCapture(Bytes(samples), state);
  EXPECT_EQ(reading.Code, "101010010000");
  EXPECT_EQ(reading.SecondFrame, "10101001") << "the mark that ends the samples is no run";
  EXPECT_FALSE(reading.Repeats);
}

TEST(WalkRecording, LeavesTheRunThatEndsTheSamplesOut) {
  const std::vector<std::pair<RunVector, std::string>> cases = {
      {{160, 80, 10, 30, 10, 101}, "Gg10001g -160-10-10 -80-30"},
      {{160, 80, 10, 100}, "Gg1 -160-10 -80"},
      {{160, 80, 10}, "Gg -160 -80"},
      {{0, 20, 10, 120}, "1001g -0-10 -20"},
      {{}, "  "},
  };
  RecordedRuns walked;
  for (const auto& [press, shown] : cases) {
    WalkRecording(press, 10, walked);
    EXPECT_EQ(walked.Symbols + " " + RunLengthsText(walked.Ones) + " " + RunLengthsText(walked.Zeros), shown);
  }
}

TEST(TrimRecording, KeepsThirtySilentBytesAfterTheSignal) {
  std::string capture = Padded(std::string(60, '\x80'), kRecordCaptureBytes);
  EXPECT_EQ(TrimRecording(capture), RecordStage::Code);
  EXPECT_EQ(capture.size(), 90U);
  std::string full(kRecordCaptureBytes, '\x01');
  EXPECT_EQ(TrimRecording(full), RecordStage::Code);
  EXPECT_EQ(full.size(), kRecordCaptureBytes);
}

}  // namespace
}  // namespace keplo::tests
