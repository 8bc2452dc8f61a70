#include "line/replay_line.h"

#include <gtest/gtest.h>

#include "doubles/test_clock.h"
#include "line_script.h"
#include "press_builder.h"
#include "signal/first_analysis.h"

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

/// The clock of a line as a device that may go, though it does not.
struct PlayClock {
  std::shared_ptr<TestClock> Clock = std::make_shared<TestClock>();
  std::chrono::nanoseconds Now() const { return Clock->Time; }
  void SleepUntil(std::chrono::nanoseconds time) const {
    Clock->WaitUntil(std::chrono::ceil<std::chrono::microseconds>(time));
  }
};

/// What a line makes of a script with the presses that are given, against a clock.
/// @param held captures of the last press while its key is held
std::string Heard(const std::vector<Press>& presses, int held, const std::string& script) {
  const PlayClock played;
  const std::int16_t receiver = 0;
  LineOptions options;
  options.HoldMs = 0;
  ReplayLine line({{"a", presses}}, receiver, options);
  line.PlayAgainst(played.Clock);
  if (held > 0) line.HoldLastPress(held);
  std::string text = Script(played, line, script, [](const std::string&) {});
  return text + (line.Done() ? "done" : "") +
         (line.LastPress() ? std::to_string(line.LastPress()->Number) : "");
}

TEST(ReplayLine, PlaysAgainstAClock) {
  const PulseTrain single = {900, 500, 700}, two = {900, 500, 700, 30'000, 600, 400, 600};
  const PulseTrain more = {900, 500, 700, 5200, 600, 5199, 600, 30'000, 500, 10'000, 400, 60'000, 300};
  struct Row {
    std::vector<Press> Presses;
    int Held;
    const char *Script, *Text;
  };
  const Row rows[] = {
      {{single}, 0, "d w499999 d w1 d m60 d w500000 d", "1 1 0 [] 16 9 13 2/5 @502200; 1 1 done1"},
      {{single, single},
       0,
       "d w500000 d m60 d w199999 d w300000 d w1 d m60 d",
       "1 0 [] 16 9 13 2/5 @502200; 1 1 1 0 [] 16 9 13 2/5 @1004400; 1 done2"},
      {{single, single},
       0,
       "w700000 d m60 w400000 d w199999 d w1 d w1000000 d",
       "0 [] 16 9 13 2/5 @702200; 1 1 0 0 1"},
      {{single, single},
       0,
       "r60 r60 r60",
       "1 [] 16 9 13 2/5 @502200; 1 [] 16 9 13 2/5 @1004400; 0 [] /0 @1004400; done2"},
      {{two, single}, 0, "w500000 d m100 d", "0 [] 16 9 13 546 11 7 11 3/77 @533880; 1 1"},
      {{single, single},
       2,
       "w500000 d m60 d m60 d m60 d",
       "0 [] 16 9 13 2/5 @502200; 1 [] 16 9 13 442/60 @1028600; 1 [] 16 9 13 442/60 @1255000; 1 done2"},
      {{single},
       2,
       "r60 r60 r60",
       "1 [] 16 9 13 442/60 @526400; 1 [] 16 9 13 442/60 @552800; 0 [] /0 @552800; done1"},
      {{more, single},
       0,
       "w500000 d m20 d w34000 d w1000 d m20 d w1800 d m20 d w51000 d w1000 d m60 d w500000 d m60 d",
       "0 [] 16 9 13 95 11/18 @508800; 1 1 0 [] 9 7/2 @552499; 1 0 [] 7 1/1 @562999; 1 1 0 [] 5 3/1 @614999; "
       "1 0 [] 16 9 13 2/5 @1117199; 1 done2"},
      {{more, single},
       0,
       "w500000 d m20 w1000 d w8000 d w1000 d w1000 d w50000 d w30000 d m20 d",
       "0 [] 16 9 13 95 11/18 @508800; 1 1 1 1 0 0 [] 9 7/2 @599800; 1 1"},
      {{two, single},
       0,
       "w500000 d m60 d w10000 d m60 d w400000 d w100000 d",
       "0 [] 16 9 13 2/5 @526400; 1 0 [] 11 7 11 3/4 @536400; 1 1 0 1"},
      {{single}, 0, "s560 u1000 s200000 w1 m60 d z", "[] 16 9 13 2/5 @807681; 1 zone 9 done1"},
  };
  for (const Row& row : rows) EXPECT_EQ(Heard(row.Presses, row.Held, row.Script), row.Text) << row.Script;
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
