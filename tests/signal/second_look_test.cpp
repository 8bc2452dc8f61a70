#include "signal/second_look/second_look.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "signal/monitored_press.h"
#include "signal/recorded_press.h"
#include "signal_builder.h"

namespace keplo {
namespace {

using tests::DistanceRuns;
using tests::kNecDigits;
using tests::NecRuns;
using tests::Rc5Runs;
using tests::Rc6Runs;
using tests::SonyRuns;
using tests::Then;
using tests::WidthRuns;
using tests::WithExcess;
using RunVector = std::vector<int>;

const std::string kSonyDigits = "101010010000";
const std::string kRc5Digits = "11000000010001";
const std::string kOtherDigits = "00000000111111111010100001010111";
const std::string kRcaDigits = "111100101010000011010101";
const std::string kInverse42 = "101100111000101001100011101001101001100101";
const std::string kSummed = "100010000000000000000011";
constexpr int kGap = 700;

RunVector Twice(const RunVector& frame) { return Then(frame, kGap, frame); }

/// As a line that was looked at too late begins a capture.
RunVector LateBy(int samples, RunVector press) {
  press.front() -= samples;
  return press;
}

/// Kind and digits that the monitor reads, or the stage at which it gives up.
std::string ReadBits(const std::string& samples, Analysis analysis = Analysis::Second,
                     double sampleTime = kNominalSampleTime) {
  SignalState state;
  state.SampleTime = sampleTime;
  const MonitorReading reading = ReadCapture(tests::Padded(tests::Bytes(samples)), state, analysis);
  if (reading.Ended != Stage::Code) return std::string(StageName(reading.Ended));
  return std::string(ProtoKindName(state.Measured.ProtoKind)) + " " + reading.Digits;
}

std::string Read(const RunVector& press, Analysis analysis = Analysis::Second) {
  return ReadBits(tests::Runs(press), analysis);
}

RunVector Changed(RunVector press, std::size_t run, int by) {
  press[run] += by;
  return press;
}

TEST(SecondLook, ReadsEachLineCodeWithAnyExcess) {
  struct Case {
    std::string Name;
    RunVector Press;
    std::string Code;
  };
  const std::string zeros(32, '0'), ones(32, '1');
  const RunVector one = DistanceRuns({80, 40}, 10, 10, 30, "0100101110001011");
  const RunVector other = DistanceRuns({80, 40}, 10, 10, 30, "0110101100101001");
  const std::vector<Case> cases = {
      {"NEC", NecRuns(kNecDigits), "NEC " + kNecDigits},
      {"NEC with dittos", Then(Then(NecRuns(kNecDigits), kGap, {160, 40, 10}), 1700, {161, 41, 10}),
       "NEC " + kNecDigits},
      {"NEC of zeros", NecRuns(zeros), "NEC " + zeros},
      {"NEC whose head is like that of 42 digits", NecRuns("00000000111111111111100000000111"),
       "NEC 00000000111111111111100000000111"},
      {"NEC of ones", NecRuns(ones), "NEC " + ones},
      {"SONY of 12", SonyRuns(kSonyDigits), "SONY " + kSonyDigits},
      {"SONY of 15", SonyRuns(kSonyDigits + "110"), "SONY " + kSonyDigits + "110"},
      {"SONY of 20", SonyRuns(kSonyDigits + "11010111"), "SONY " + kSonyDigits + "11010111"},
      {"SONY of zeros", SonyRuns("000000000000"), "SONY 000000000000"},
      {"SONY of ones", SonyRuns("111111111111111"), "SONY 111111111111111"},
      {"RC5", Rc5Runs("11100000010001"), "RC5 11000000010001"},
      {"one frame of RC5", Rc5Runs(kRc5Digits, 1), "RC5 " + kRc5Digits},
      {"RC5 without a double space", Rc5Runs("11000000000000", 1), "RC5 11000000000000"},
      {"RC5 that begins with a double mark alone", Rc5Runs("10000000000000", 1), "RC5 10000000000000"},
      {"13 digits with a leader of their own", Twice(DistanceRuns({80, 60}, 12, 12, 24, "1011001110001")),
       "NEC 1011001110001"},
      {"15 digits without a leader", Twice(DistanceRuns({}, 9, 14, 34, "101100111000110")),
       "NEC 101100111000110"},
      {"48 digits after a short leader", DistanceRuns({64, 32}, 8, 8, 24, kNecDigits + "1100110000110101"),
       "NEC " + kNecDigits + "1100110000110101"},
      {"48 digits after a leader whose space is little longer than theirs",
       DistanceRuns({64, 32}, 8, 8, 26, kNecDigits + "1100110000110101"),
       "NEC " + kNecDigits + "1100110000110101"},
      {"18 digits behind a leader space of 3.4 base times",
       Twice(DistanceRuns({45, 34}, 10, 10, 26, kNecDigits.substr(7, 18))),
       "NEC " + kNecDigits.substr(7, 18)},
      {"NEC behind the end of another frame", Then({10, 10, 10}, 95, NecRuns(kNecDigits)), "doubtful"},
      {"RCA", DistanceRuns({64, 64}, 8, 16, 32, kRcaDigits), "NEC " + kRcaDigits},
      {"42 digits", NecRuns(kInverse42), "NEC " + kInverse42},
      {"28 digits that end in their sum, and a ditto", Then(NecRuns(kSummed + "0011"), kGap, {160, 40, 10}),
       "NEC " + kSummed + "0011"},
      {"NEC whose leader began 2 ms ahead", LateBy(36, NecRuns(kNecDigits)), "NEC " + kNecDigits},
      {"RC6, late", LateBy(36, Rc6Runs("10000000000000001100", true)), "RC6 10000000000000001100"},
      {"RC6 of a media centre", Rc6Runs("111010000000000011110000010000001100", true),
       "RC6 111010000000000011110000010000001100"},
      {"two frames in turns", Then(Then(one, kGap, other), kGap, one),
       "NEC 01001011100010110110101100101001"},
      {"the same, from the other one on", Then(Then(other, kGap, one), kGap, other),
       "NEC 01001011100010110110101100101001"},
      {"pulse width of 16 digits", Twice(WidthRuns({90, 30}, 12, 12, 30, "1011001110001011")),
       "SONY 1011001110001011"},
  };
  for (const Case& c : cases) {
    for (const int excess : {-1, 0, 1, 2, 3}) {
      EXPECT_EQ(Read(WithExcess(c.Press, excess)), c.Code) << c.Name << ", excess " << excess;
    }
    if (std::accumulate(c.Press.begin(), c.Press.end(), 0) > 2000) continue;
    RunVector fine = c.Press;
    for (int& run : fine) run *= 2;
    EXPECT_EQ(ReadBits(tests::Runs(fine), Analysis::Second, kNominalSampleTime / 2.0), c.Code) << c.Name;
  }
}

/// One frame of RC5 with another base time.
RunVector Rc5Of(int unit, const std::string& digits) {
  RunVector runs = Rc5Runs(digits, 1);
  for (int& run : runs) run = (run + 8) / 16 * unit;
  return runs;
}

RunVector From(const RunVector& frame, int run) { return {frame.begin() + run, frame.end()}; }

RunVector UpTo(const RunVector& frame, int run) { return {frame.begin(), frame.begin() + run}; }

/// A frame that lost a mark: the spaces on both sides of it become one.
RunVector WithoutMark(RunVector frame, std::size_t mark, std::size_t marks = 1) {
  for (; marks > 0; --marks) {
    frame[mark - 1] += frame[mark] + frame[mark + 1];
    frame.erase(frame.begin() + static_cast<std::ptrdiff_t>(mark),
                frame.begin() + static_cast<std::ptrdiff_t>(mark) + 2);
  }
  return frame;
}

TEST(SecondLook, ReadsWholeFramesThatAgree) {
  const std::string no;  // a stage, whichever
  const RunVector nec = NecRuns(kNecDigits);
  const RunVector sony = SonyRuns(kSonyDigits);
  const RunVector other = SonyRuns("101010010110");
  const RunVector rc5 = Rc5Runs(kRc5Digits, 1);
  RunVector spiked = nec;
  spiked[5] -= 7;
  spiked.insert(spiked.begin() + 6, {2, 5});
  // 32 digits, a mark between two long spaces that is lost, and 14 digits more.
  const RunVector split =
      WithoutMark(DistanceRuns({160, 80}, 10, 10, 30, kNecDigits + "11" + "01011001110010"), 2 + 2 * 33);
  const std::string half = "011001101001100";
  const RunVector halves = WithoutMark(NecRuns(half + "11" + half), 2 + 2 * 16);
  const auto led = [](int mark, const std::string& digits) {
    return DistanceRuns({mark, 40}, 10, 10, 30, digits);
  };
  const std::string inverses = "101100100100110100010110111010011100000000111111";
  const RunVector fifteen = DistanceRuns({160, 80}, 10, 10, 30, half);
  const RunVector turn = led(80, "0100101110001011"), otherTurn = led(80, "1011010001110100");
  const RunVector longer = Changed(WidthRuns({40, 10}, 10, 10, 20, kSonyDigits), 4, 7);
  RunVector spikedSony = sony;
  spikedSony[6] -= 5;
  spikedSony.insert(spikedSony.begin() + 7, {2, 3});
  const std::string offKaseikyo = "010000000000010000001101000000001000010010001011";
  const RunVector rca = DistanceRuns({64, 64}, 8, 16, 32, kRcaDigits);
  const RunVector offRca = DistanceRuns({64, 64}, 8, 16, 32, "111100101010000011100110");
  const RunVector parted = WithoutMark(NecRuns("1111" + kNecDigits.substr(4)), 8);
  RunVector beheaded = LateBy(2, From(turn, 2));
  beheaded[1] = 30;
  const RunVector splitTurn = WithoutMark(led(80, "0100101100110101"), 18, 6);
  struct Case {
    std::string Name;
    RunVector Press;
    std::string Heard;
  };
  const std::vector<Case> cases = {
      {"NEC with a closing mark that is long", Changed(nec, nec.size() - 1, 4), "NEC " + kNecDigits},
      {"each byte and its inverse", DistanceRuns({64, 32}, 8, 8, 24, inverses), "NEC " + inverses},
      {"15 digits, again and again", Then(Twice(fifteen), kGap, fifteen), no},
      {"NEC, head cut, then whole", Then(From(nec, 20), kGap, nec), "NEC " + kNecDigits},
      {"SONY, head cut, then whole", Then(From(sony, 4), 200, sony), "SONY " + kSonyDigits},
      {"RC5, head cut, then whole", Then(From(rc5, 4), 1600, rc5), "RC5 " + kRc5Digits},
      {"SONY, then cut in a mark", Then(sony, 200, UpTo(sony, 9)), "SONY " + kSonyDigits},
      {"a spike within a space", spiked, "NEC " + kNecDigits},
      {"a lone mark far ahead", Then({60}, 600, sony), "SONY " + kSonyDigits},
      {"... of a line code without a leader", Then({60}, 600, rc5), "RC5 " + kRc5Digits},
      {"NEC alone, head cut", From(nec, 20), no},
      {"NEC alone, end cut", UpTo(nec, 35), no},
      {"RC5 alone, head cut", From(rc5, 2), no},
      {"RC5 alone, end cut", UpTo(rc5, 15), no},
      {"SONY of 20 that lost two marks after its twelfth",
       WithoutMark(SonyRuns("10101010101011010101"), 26, 2), no},
      {"SONY of 15 that faded after 11 digits", UpTo(SonyRuns(kSonyDigits + "110"), 23), no},
      {"two that differ", Then(sony, 200, other), "doubtful"},
      {"three of SONY, and a longer one",
       Then(Then(Twice(sony), 200, sony), 200, SonyRuns(kSonyDigits + "11010011")), no},
      {"three of SONY, of which two agree", Then(Then(sony, 200, other), 200, sony), "SONY " + kSonyDigits},
      {"two remotes", Then(sony, 200, rc5), no},
      {"the front part of a frame", split, no},
      {"the front part of a frame, and a ditto", Then(split, kGap, {160, 40, 10}), no},
      {"the equal halves of a frame", halves, no},
      {"two that agree, behind one without a leader and with a wrong space",
       Then(Then(beheaded, kGap, turn), kGap, turn), "NEC 0100101110001011"},
      {"one of two in turns, the other one damaged",
       Then(Then(turn, kGap, WithoutMark(otherTurn, 8, 3)), kGap, turn), no},
      {"the same, split behind digits that are alike", Then(Then(turn, kGap, splitTurn), kGap, turn), no},
      {"behind leaders that differ", Then(led(120, half), kGap, led(60, half)), no},
      {"behind a leader that follows", Then(From(turn, 2), kGap, turn), no},
      {"behind a mark far ahead", Then({90}, 300, Twice(From(turn, 2))), no},
      {"a lamp's pulses, as many as those of SONY", Then({24}, 4, Twice(WidthRuns({}, 4, 7, 7, kSonyDigits))),
       no},
      {"a lamp's pulses, as many as those of RC5", Rc5Of(11, "10000000000000"), no},
      {"28 digits that end in another sum", Then(NecRuns(kSummed + "0010"), kGap, {160, 40, 10}), no},
      {"spaces of no common protocol", DistanceRuns({160, 80}, 10, 10, 20, kNecDigits), no},
      {"SONY alone, a mark made almost as long as the others", longer, no},
      {"the same with another frame", Then(longer, 200, sony), no},
      {"RC5 alone, its last space but one made double", Changed(Rc5Runs("11000000010000", 1), 21, 12), no},
      {"SONY alone, spiked", spikedSony, no},
      {"RC6 of another base time, alone", Rc6Runs("10000000000000001100", false, 12), no},
      {"the same, twice", Twice(Rc6Runs("10000000000000001100", false, 12)), "RC6 10000000000000001100"},
      {"NEC alone, a digit of its inverse byte made another", Changed(nec, 53, 19), no},
      {"... beside an address of its own", Changed(NecRuns("01101001" + kNecDigits.substr(8)), 53, 18), no},
      {"NEC alone, one of its address another", NecRuns("1" + kNecDigits.substr(1)),
       "NEC 1" + kNecDigits.substr(1)},
      {"48 digits alone",
       DistanceRuns({64, 32}, 8, 8, 24, "101001100000010110010111001101010110000111000011"),
       "NEC 101001100000010110010111001101010110000111000011"},
      {"48 digits alone, one of them another", DistanceRuns({64, 32}, 8, 8, 24, offKaseikyo), no},
      {"... that two sums count",
       DistanceRuns({64, 32}, 8, 8, 24, "010000000000010001001101000000001000010010001001"), no},
      {"42 digits alone, the first of the command another",
       NecRuns("101100111000101001100011100001101001100101"), no},
      {"RC6 whose toggle begins with two halves that differ",
       Changed(Changed(Rc6Runs("10001000000000001100", true), 8, -8), 9, 8), no},
      {"first digits that leaders swallowed", Twice(WithoutMark(SonyRuns(kSonyDigits + "11010111"), 2)), no},
      {"first digits that were parted from their frames", Twice(parted), no},
      {"a damaged frame between two that prove themselves", Then(Then(rca, kGap, offRca), kGap, rca), no},
  };
  for (const Case& c : cases) {
    const std::string heard = Read(c.Press);
    EXPECT_EQ(c.Heard == no && heard.find(' ') == std::string::npos ? no : heard, c.Heard) << c.Name;
  }
}

/// The digits of a doubtful press, which a learned command may prove.
TEST(SecondLook, KeepsTheDigitsOfAFrameThatIsAlone) {
  const auto lone = [](const std::string& digits) { return DistanceRuns({90, 50}, 10, 10, 30, digits); };
  const std::string odd = kNecDigits.substr(0, 22);
  const RunVector alone = lone(odd), bare = DistanceRuns({}, 10, 10, 30, odd), ditto = {160, 40, 10};
  struct Case {
    std::string Name;
    RunVector Press;
    std::string Digits;
  };
  const std::vector<Case> cases = {
      {"22 digits", alone, odd},
      {"33 digits", lone(kNecDigits + "1"), kNecDigits + "1"},
      {"pulse width of 13", WidthRuns({45, 10}, 10, 10, 21, "1011001110001"), "1011001110001"},
      {"one odd digit, twice", Twice(lone("0000000000010000000000")), "0000000000010000000000"},
      {"two that differ by one digit", Then(alone, kGap, lone("1" + odd.substr(1))), ""},
      {"with signs of its own leader and the whole space after it",
       Then(Then(alone, kGap, {90, 50, 10}), 1700, {91, 49, 11}), odd},
      {"with signs whose space parts frames",
       Then(Then(DistanceRuns({160, 90}, 10, 10, 30, odd), kGap, {160, 90, 10}), 1500, {160, 90, 10}), odd},
      {"frames between rests",
       Then(Then(Then(DistanceRuns({}, 8, 30, 50, odd), 108, DistanceRuns({}, 8, 30, 50, odd)), 108,
                 DistanceRuns({}, 8, 30, 50, odd)),
            108, DistanceRuns({}, 8, 30, 50, odd)),
       odd},
      {"with dittos", Then(Then(alone, kGap, ditto), 1700, ditto), odd},
      {"two that take turns", Then(alone, kGap, lone(odd.substr(1) + "1")), odd + odd.substr(1) + "1"},
      {"the same, the other one first", Then(lone(odd.substr(1) + "1"), kGap, alone),
       odd + odd.substr(1) + "1"},
      {"two of different length", Then(alone, kGap, lone(odd + "1")), ""},
      {"40 digits behind the leader of NEC", DistanceRuns({160, 80}, 10, 10, 30, kNecDigits + "10110100"),
       kNecDigits + "10110100"},
      {"another piece after it", Then(alone, kGap, {10, 30, 10, 10, 10}), ""},
      {"the beginning of the next one, a space of it too long", Then(alone, 2600, Changed(alone, 7, 7)), odd},
      {"a digit made almost another", Changed(WidthRuns({40, 10}, 10, 10, 20, kSonyDigits), 4, 7), ""},
      {"without a leader", bare, odd},
      {"the same and its beginning again", Then(bare, 2800, bare), odd},
      {"the same behind another piece, which may be its head", Then({10, 10, 10}, 60, bare), ""},
      {"12 digits of pulse distance", lone(odd.substr(0, 12)), odd.substr(0, 12)},
  };
  for (const Case& c : cases) {
    SignalState state;
    const MonitorReading reading = ReadCapture(tests::Capture(c.Press), state, Analysis::Second);
    EXPECT_NE(reading.Ended, Stage::Code) << c.Name;
    EXPECT_EQ(reading.Digits, c.Digits) << c.Name;
  }
}

/// Noise is drawn anew in each round; a code would have to come out of chance.
TEST(SecondLook, ReadsNothingFromNoise) {
  std::mt19937 dice(1);
  const auto from = [&](int least, int most) {
    return least + static_cast<int>(dice() % static_cast<unsigned>(most - least + 1));
  };
  for (int round = 0; round < 400; ++round) {
    std::string white;
    const int density = from(1, 99);
    while (white.size() < 4000) white += from(1, 100) <= density ? '1' : '0';
    EXPECT_EQ(ReadBits(white).find(' '), std::string::npos) << "white noise, round " << round;

    RunVector flicker, train;
    const int mark = from(3, 60), space = from(3, 90);
    for (int pair = from(10, 80); pair > 0; --pair) {
      flicker.insert(flicker.end(), {mark + from(-1, 1), space + from(-1, 1)});
      train.insert(train.end(), {from(3, 40), from(3, 60)});
    }
    EXPECT_EQ(Read(flicker).find(' '), std::string::npos) << "flicker, round " << round;
    EXPECT_EQ(Read(train).find(' '), std::string::npos) << "pulses, round " << round;
  }
}

TEST(SecondLook, GivesTheCodeOfTheFirstAnalysisWhereThatReadsOne) {
  std::mt19937 dice(2);
  int both = 0;
  const auto compare = [&](const RunVector& press, const std::string& sent) {
    // What the first analysis takes for another signal is not read.
    if (Read(press, Analysis::First) != sent) return;
    ++both;
    EXPECT_EQ(Read(press), sent);
  };
  for (int round = 0; round < 300; ++round) {
    std::string digits;
    while (digits.size() < 32) digits += dice() % 2 == 0 ? '0' : '1';
    const int excess = static_cast<int>(dice() % 4) - 1;
    const std::string sony = digits.substr(0, 12);
    const std::string rc5 = "110" + digits.substr(0, 11);
    compare(WithExcess(NecRuns(digits), excess), "NEC " + digits);
    compare(WithExcess(SonyRuns(sony), excess), "SONY " + sony);
    compare(WithExcess(Rc5Runs(rc5), excess), "RC5 " + rc5);
  }
  EXPECT_GT(both, 300);
  both = 0;
  const std::string digits = "0100010011000100";
  for (const int leaderSpace : {10, 19, 20, 21, 29, 30, 31}) {
    for (const int one : {20, 29})
      compare(Twice(DistanceRuns({90, leaderSpace}, 10, 10, one, digits)),
              (leaderSpace > 10 ? "NEC 1" : "NEC 0") + digits);
  }
  const RunVector fine = Twice(DistanceRuns({50, 26}, 4, 4, 12, digits));
  for (const int excess : {0, 1}) compare(WithExcess(fine, excess), "NEC " + digits);
  EXPECT_EQ(both, 16);
}

TEST(SecondLook, IsUnsureOfFineSignalsWithSpacesOfTwoSamples) {
  RunVector fine = WithExcess(Twice(DistanceRuns({50, 26}, 4, 4, 12, "0100010011000100")), 1);
  for (std::size_t i = 3; i + 4 < fine.size(); i += 6) {
    if (fine[i] != 3) continue;
    --fine[i];
    ++fine[i + 1];
  }
  SignalState state;
  state.Samples.Read(tests::Capture(fine));
  const RunSpan runs = state.Runs.Read(state.Samples);
  EXPECT_EQ(state.Second.Read(state.Samples, runs).Proven, RobustReading::Proof::Unsure);
}

RecordReading Record(const RunVector& press, Analysis analysis = Analysis::Second) {
  SignalState state;
  return ReadRecordedCapture(tests::Capture(press, kRecordCaptureBytes), state, analysis);
}

TEST(SecondLook, TellsARecordingAsTheFirstAnalysisDoes) {
  const std::vector<RunVector> presses = {
      NecRuns(kNecDigits),        Then(NecRuns(kNecDigits), kGap, {160, 45, 10}),
      Twice(NecRuns(kNecDigits)), Rc5Runs("11100000010001"),
      Rc5Runs(kRc5Digits, 1),     Twice(SonyRuns(kSonyDigits))};
  const auto told = [](const RecordReading& reading) {
    return std::tuple(reading.Ended, reading.Code, reading.Repeats, reading.SyncType, reading.Toggle,
                      reading.Values ? reading.Values->Command : -1, reading.Runs.Ones);
  };
  for (const RunVector& press : presses) {
    const RecordReading second = Record(press);
    EXPECT_EQ(second.Ended, RecordStage::Code);
    EXPECT_EQ(told(second), told(Record(press, Analysis::First))) << second.Decoded;
  }
  // The first analysis knows no numbers of 20 digits.
  const RunVector twenty =
      Twice(SonyRuns("1010001"
                     "00010"
                     "11000000"));
  EXPECT_EQ(Record(twenty).Values, (CodeValues{8, 69, 3}));
  EXPECT_EQ(Record(twenty, Analysis::First).Values, std::nullopt);
  const RunVector nec = NecRuns(kNecDigits);
  const RunVector message = Then(nec, kGap, NecRuns(kNecDigits + kOtherDigits));
  EXPECT_TRUE(Record(message).IsDoubtful) << "the first part of a message is no code";
  EXPECT_TRUE(Record(Twice(SonyRuns("10110010"))).IsDoubtful) << "the monitor would not take it";
  const RecordReading turns = Record(Then(nec, kGap, NecRuns(kOtherDigits)));
  EXPECT_EQ(std::tuple(turns.Code, turns.Repeats, turns.SendAs),
            std::tuple(kNecDigits + kOtherDigits, false, std::string("32")));
  EXPECT_EQ(Record(Then(NecRuns(kOtherDigits), kGap, nec)).SendAs, "32<") << "in the order that was heard";
  const RecordReading rc6 = Record(Rc6Runs("10000000010100001100", true));
  EXPECT_EQ(rc6.Values, (CodeValues{5, 12}));
  EXPECT_EQ(std::tuple(rc6.Toggle, rc6.SendAs), std::tuple('1', std::string("RC6")));
  const RunVector sony = SonyRuns(kSonyDigits);
  const RecordReading cut = Record(Then(From(sony, 6), 250, Twice(sony)));
  EXPECT_EQ(cut.FirstFrame, kSonyDigits) << "the frame that was cut is none";
  EXPECT_TRUE(cut.Repeats);
}

}  // namespace
}  // namespace keplo
