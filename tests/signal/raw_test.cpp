#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "signal/raw/raw_digits.h"
#include "signal/raw/raw_index.h"
#include "signal/raw/raw_lesson.h"
#include "signal/raw/raw_send.h"
#include "signal/signal_builder.h"

namespace keplo {
namespace {

using tests::Then;
using RunVector = std::vector<int>;

constexpr int kFrameGap = 600, kSilence = 240;  // all that a recording keeps

/// A frame of a leader and digits of three lengths of space, which no analysis reads.
RunVector Frame(const std::string& digits, int least = 8, int step = 12) {
  RunVector runs = {60, 30};
  for (const char digit : digits) runs.insert(runs.end(), {8, least + step * (digit - '0')});
  runs.push_back(8);
  return runs;
}

const std::string kKey = "012021102201", kOtherKey = "012021102200";

/// Two of three spaces are as long as those that part frames, or nearly so.
RunVector LongSpaced(int least = 9) { return Frame(kKey, least, 64); }

/// A press with a frame ahead of the key's and behind them that all keys of the remote have. Frames are
/// letters: s is that one, k and o are of two keys.
RunVector Enclosed(const std::string& frames) {
  constexpr int kPause = 1500;
  const std::map<char, RunVector> known = {
      {'s', Frame("2222222220")}, {'k', Frame("1201021011")}, {'o', Frame("1201021012")}};
  RunVector runs = known.at(frames.front());
  for (std::size_t i = 1; i < frames.size(); ++i)
    runs = Then(runs, i == 1 ? kFrameGap : kPause, known.at(frames[i]));
  return runs;
}

/// A message of parts that are told apart by one digit.
RunVector Parts(const std::string& parts) {
  RunVector runs = Frame("20110120" + parts.substr(0, 1));
  for (const char part : parts.substr(1)) runs = Then(runs, kFrameGap, Frame(std::string("20110120") + part));
  return runs;
}

/// Heard samples live in a reader.
class Ear {
 public:
  HeardLengths Hear(const RunVector& runs, double sampleTime = kNominalSampleTime) {
    samples_.Read(tests::Bytes(tests::Runs(runs)));
    return HeardIn(runs_.Read(samples_), sampleTime);
  }

 private:
  SampleWords samples_;
  RunReader runs_;
};

RunVector Silent(RunVector runs) {
  runs.push_back(kSilence);
  return runs;
}

RunVector Scaled(RunVector runs, double scale) {
  for (int& run : runs) run = static_cast<int>(std::lround(run * scale));
  return runs;
}

RunVector WithExcess(RunVector runs, int samples) {
  for (std::size_t i = 0; i < runs.size(); ++i) runs[i] += i % 2 == 0 ? samples : -samples;
  return runs;
}

RunVector From(const RunVector& runs, std::size_t first, int firstMark) {
  RunVector rest(runs.begin() + static_cast<std::ptrdiff_t>(first), runs.end());
  rest.front() = firstMark;
  return rest;
}

RunVector First(RunVector runs, std::size_t count) {
  runs.resize(count);
  return runs;
}

/// A receiver that has missed the mark at a place.
RunVector WithoutMark(RunVector runs, std::size_t place) {
  runs[place - 1] += runs[place] + runs[place + 1];
  runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(place),
             runs.begin() + static_cast<std::ptrdiff_t>(place) + 2);
  return runs;
}

RawSignal Learned(const std::string& digits, const RunVector& runs) {
  Ear ear;
  return {digits, {FindLevels(ear.Hear(Silent(runs)))->Lengths}};
}

struct HeardCase {
  std::string Name;
  RunVector Runs;
  std::string Found;
};

class RawCommands : public ::testing::TestWithParam<HeardCase> {};

INSTANTIATE_TEST_SUITE_P(
    Presses, RawCommands,
    ::testing::Values(
        HeardCase{"AsLearned", Silent(Frame(kKey)), "key"},
        HeardCase{"LongerMarks", Silent(WithExcess(Frame(kKey), 4)), "key"},
        HeardCase{"OneLengthOther", Silent(Frame("012021102211")), ""},
        HeardCase{"OtherCommand", Silent(Frame(kOtherKey)), "other"},
        HeardCase{"LeaderBegunEarlier", Silent(From(Frame(kKey), 0, 25)), "key"},
        HeardCase{"LeaderLost", Silent(From(Frame(kKey), 2, 3)), "key"},
        HeardCase{"FirstMarkTooLong", Silent(From(Frame(kKey), 0, 75)), ""},
        HeardCase{"Held", Silent(Then(Frame(kKey), kFrameGap, Frame(kKey))), "key"},
        HeardCase{"HeldWithoutDigits", Silent(Then(Frame(kKey), kFrameGap, {60, 15, 8})), "key"},
        HeardCase{
            "FrameOfThreeLostAMark",
            Silent(Then(Then(Frame(kKey), kFrameGap, WithoutMark(Frame(kKey), 10)), kFrameGap, Frame(kKey))),
            "key"},
        HeardCase{"FrameOfTwoLostAMark", Silent(Then(Frame(kKey), kFrameGap, WithoutMark(Frame(kKey), 10))),
                  ""},
        HeardCase{"OnlyFrameLostAMark", Silent(WithoutMark(Frame(kKey), 10)), ""},
        HeardCase{"GoesOnOtherwise", Silent(Then(Frame(kKey), kFrameGap, Frame(kOtherKey))), ""},
        HeardCase{"OtherSampleTime", Silent(Scaled(Frame(kKey), 1.1)), "key"},
        HeardCase{"MuchSlower", Silent(Scaled(Frame(kKey), 1.25)), ""},
        HeardCase{"SamplesEndInRepeat", First(Then(Frame(kKey), kFrameGap, Frame(kKey)), 40), "key"},
        HeardCase{"SamplesEndInFrame", First(Frame(kKey), 21), ""},
        HeardCase{"SamplesEndInFrameOfOneKey", First(LongSpaced(), 21), "long"},
        HeardCase{"SignalEndsInFrame", Silent(First(Frame(kKey), 25)), ""},
        HeardCase{"FirstPartOfTwoMessages", Silent(Frame("111000111000")), ""},
        HeardCase{"WholeMessage", Silent(Then(Frame("111000111000"), kFrameGap, Frame("222"))), "first"},
        HeardCase{"LongSpaces", Silent(Then(LongSpaced(8), kFrameGap, LongSpaced(8))), "long"},
        HeardCase{"EnclosedTap", Silent(Enclosed("sks")), "enclosed"},
        HeardCase{"EnclosedHold", Silent(Enclosed("skkks")), "enclosed"},
        HeardCase{"EnclosedToCaptureEnd", Silent(Enclosed("skk")), "enclosed"},
        HeardCase{"EnclosedHoldBegunLate", Silent(From(Enclosed("skks"), 2, 3)), "enclosed"},
        HeardCase{"EnclosedOtherKey", Silent(Enclosed("soos")), ""},
        HeardCase{"EnclosedTwoKeys", Silent(Enclosed("skos")), ""},
        HeardCase{"EnclosingFrame", Silent(Enclosed("s")), ""},
        HeardCase{"EnclosingFramesAlone", Silent(Enclosed("ss")), ""},
        HeardCase{"SecondPartForTheThird", Silent(Parts("011")), ""},
        HeardCase{"TwoPartsOfThree", Silent(Parts("01")), ""},
        HeardCase{"ThreeParts", Silent(Parts("012")), "parts"},
        HeardCase{"TooFewLengths", Silent(Frame("01202")), ""}),
    [](const auto& row) { return row.param.Name; });

TEST_P(RawCommands, AreFoundByTheirLengthsAlone) {
  RawIndex index;
  index.Add(Learned("key", Frame(kKey)));
  index.Add(Learned("other", Frame(kOtherKey)));
  index.Add(Learned("long", LongSpaced()));
  index.Add(Learned("first", Then(Frame("111000111000"), kFrameGap, Frame("222"))));
  index.Add(Learned("parts", Parts("012")));
  index.Add(Learned("enclosed", Enclosed("sks")));
  index.Add(Learned("second", Then(Frame("111000111000"), kFrameGap, Frame("221"))));
  Ear ear;
  const RawMatch match = index.Find(ear.Hear(GetParam().Runs));
  EXPECT_EQ(match.Alone ? match.Digits : "", GetParam().Found);
}

TEST(RawIndex, KnowsTheSampleTimeAndTakesTheBestFit) {
  RawIndex index;
  index.Add(Learned("key", Frame(kKey)));
  index.Add(Learned("other", Frame(kOtherKey)));
  RawSignal alike = Learned("alike", Frame(kKey));
  alike.Forms.front()[9] += 120;
  for (const double sampleTime : {50.0, 100.0}) {
    Ear ear;
    const auto heard =
        ear.Hear(Scaled(Silent(Frame(kOtherKey)), kNominalSampleTime / sampleTime), sampleTime);
    EXPECT_EQ(index.Find(heard).Digits, "other") << sampleTime;
    EXPECT_TRUE(index.Find(heard).Alone) << sampleTime;
  }
  index.Add(alike);
  Ear ear;
  RunVector runs = Silent(Frame(kKey));
  EXPECT_EQ(index.Find(ear.Hear(runs)).Digits, "key");
  EXPECT_TRUE(index.Find(ear.Hear(runs)).Alone) << "by 120 us, in all edges behind it";
  ++runs[9];
  EXPECT_FALSE(index.Find(ear.Hear(runs)).Alone);
  const RunVector held = Then(First(runs, runs.size() - 1), kFrameGap, First(runs, runs.size() - 1));
  index.Clear();
  index.Add(alike);
  index.Add(Learned("held", Then(Frame(kKey), kFrameGap, Frame(kKey))));
  EXPECT_EQ(index.Find(ear.Hear(Silent(held))).Digits, "held") << "by 10 us in all frames, not by fewer";
  RunVector wandering = held;
  for (std::size_t i = 2; i < held.size(); i += 2) wandering[i] += i % 27 < 14 ? 1 : -1;
  EXPECT_TRUE(index.Find(ear.Hear(Silent(wandering))).IsSame) << "no length is another";
}

TEST(RawCompare, KnowsWhatAHeldKeySendsOn) {
  const RunVector late = Then(Frame("0120"), 4000, Frame("1201021011"));
  const std::tuple<const char*, RunVector, RunVector, bool> rows[] = {
      {"its frame", Enclosed("k"), Enclosed("sks"), true},
      {"... and the last one", Enclosed("kks"), Enclosed("skks"), true},
      {"... heard late", From(Enclosed("kk"), 2, 3), Enclosed("sks"), true},
      {"... cut short", First(Frame("1201021011"), 21), Enclosed("sks"), false},
      {"another key's frame", Enclosed("o"), Enclosed("sks"), false},
      {"... behind its own", Enclosed("ko"), Enclosed("sks"), false},
      {"the last one alone", Enclosed("s"), Enclosed("sks"), false},
      {"frames in turns", Enclosed("os"), Enclosed("so"), true},
      {"a late part of a message", Frame("1201021011"), late, false},
  };
  for (const auto& [name, heard, stored, goesOn] : rows) {
    Ear ear;
    EXPECT_EQ(GoesOnWithRaw(ear.Hear(Silent(heard)), Learned("key", stored).Forms[0]), goesOn) << name;
  }
}

TEST(RawLevels, AreThoseOfACleanSignalOnly) {
  Ear ear;
  RunVector jittery = Frame(kKey), flicker, straying, noise;
  for (std::size_t i = 4; i < jittery.size(); i += 4) ++jittery[i];
  const auto signal = FindLevels(ear.Hear(Silent(jittery)));
  ASSERT_TRUE(signal);
  EXPECT_NEAR(signal->Lengths[2], signal->Lengths[4], 10) << "the mean of their level";
  for (int i = 0; i < 30; ++i) {
    const int stray = i % 3 + i / 3 % 3 + i / 9 % 3;
    flicker.insert(flicker.end(), {20, 30});
    straying.insert(straying.end(), {14 + stray, 20 - stray});
    noise.insert(noise.end(), {3 + i * i % 71, 5 + i * 7 % 64});
  }
  for (const RunVector& lamp : {flicker, straying}) {
    EXPECT_FALSE(FindLevels(ear.Hear(lamp)));
    EXPECT_TRUE(IsNoise(ear.Hear(lamp)));
  }
  RunVector rarely = Frame(std::string(40, '0'));
  for (int i = 2; i < 83; ++i) rarely[i] = i / 2 % 10 == 3 ? 11 + i / 20 % 2 : 5 + i / 2 % 2;
  for (const int i : {8, 9, 12, 13}) rarely[i] = i < 12 ? 7 : 9;
  EXPECT_TRUE(FindLevels(ear.Hear(Silent(rarely)))) << "two lengths, of which one is rare";
  const RunVector equal(17, 20), few(11, 20);
  EXPECT_TRUE(FindLevels(ear.Hear(Silent(Then(equal, kFrameGap, equal))))) << "as many pulses in each frame";
  EXPECT_FALSE(IsNoise(ear.Hear(First(Then(RunVector(23, 20), kFrameGap, equal), 39)))) << "the last one cut";
  EXPECT_FALSE(FindLevels(ear.Hear(Silent(Then(few, kFrameGap, few)))));
  EXPECT_TRUE(FindLevels(ear.Hear(Silent(Then(Then(few, kFrameGap, few), kFrameGap, few)))));
  const RunVector sixteen = Frame("0123456789:;<=>?", 14, 3);
  EXPECT_TRUE(FindLevels(ear.Hear(Silent(Then(sixteen, kFrameGap, sixteen))))) << "sixteen lengths of space";
  EXPECT_FALSE(FindLevels(ear.Hear(Silent(Then(equal, kFrameGap, RunVector(19, 20))))));
  EXPECT_FALSE(FindLevels(ear.Hear(noise)));
}

TEST(RawDigits, CanBeCheckedAndAreDrawnAnewWhereTaken) {
  const std::string digits = DrawRawDigits({0, 1, 2}, [](std::string_view) { return false; });
  EXPECT_NE(DrawRawDigits({0, 1, 2}, [&](std::string_view drawn) { return drawn == digits; }), digits);
  EXPECT_GE(digits.size(), 48U);
  EXPECT_TRUE(AreRawDigits(digits));
  std::string changed = digits;
  changed[20] = changed[20] == '0' ? '1' : '0';
  EXPECT_FALSE(AreRawDigits(changed));
}

TEST(RawSlots, PutEdgesOnTheNearestBorder) {
  EXPECT_EQ(SlotsOfLengths(std::vector<int>{24, 14, 32}, 10), "1100111");
}

/// Presses are letters: a and b are forms alike, c is of another remote, A holds its frame twice, and
/// s and S are a tap and a hold of a key whose frames are enclosed by others, h holds a by other frames, and
/// w is A of a remote whose clock has become slower meanwhile.
TEST(RawLesson, WantsEachFormTwice) {
  struct Row {
    std::string Presses;
    bool Confirmed, TakesTurns, AreTurns;
  };
  for (const Row& row : {Row{"a", false, false, false},
                         {"aa", true, false, true},
                         {"A", true, false, false},
                         {"ab", false, false, false},
                         {"aba", false, false, false},
                         {"abab", false, true, true},
                         {"aabab", false, true, false},
                         {"sS", true, false, true},
                         {"Ss", true, false, true},
                         {"ah", true, false, true},
                         {"ha", true, false, true},
                         {"acac", false, false, false},
                         {"Aw", true, false, true},
                         {"aabb", true, false, false}}) {
    RawLesson lesson;
    for (const char press : row.Presses) {
      Ear ear;
      RunVector runs = Frame(press == 'b' ? kOtherKey : kKey);
      if (press == 'c') runs = Frame(kKey + kKey);
      if (press == 's' || press == 'S') runs = Enclosed(press == 's' ? "sks" : "skkks");
      RunVector again = runs;
      for (std::size_t i = 0; press == 'w' && i < again.size(); i += 3) again[i] += i < 24 ? 1 : 2;
      if (press == 'A' || press == 'w') runs = Then(runs, kFrameGap, again);
      if (press == 'h') runs = Then(runs, 1500, Frame(kOtherKey));
      EXPECT_TRUE(lesson.Hear(ear.Hear(Silent(runs))));
    }
    EXPECT_EQ(lesson.IsLastConfirmed(), row.Confirmed) << row.Presses;
    if (row.Presses == std::string("Ss")) {
      EXPECT_EQ(lesson.Last().Signal.Lengths, Learned("", Enclosed("skkks")).Forms.front());
    }
    EXPECT_EQ(lesson.TakesTurns(), row.TakesTurns) << row.Presses;
    EXPECT_EQ(lesson.AreTurns(), row.AreTurns) << row.Presses;
  }
  RawLesson lesson;
  Ear ear;
  for (const char* place : {"a.mode2 1", "b.mode2 1", "a.mode2 1", "a.mode2 1"})
    lesson.Hear(ear.Hear(Silent(Frame(*place == 'a' ? kKey : kOtherKey))), place);
  EXPECT_FALSE(lesson.IsLastConfirmed()) << "a recording that is opened again";
  EXPECT_EQ(&lesson.Last(), &lesson.Forms().front());
  RunVector late = Frame(kKey);
  late[0] -= 20;
  late[1] += 2;
  lesson.Hear(ear.Hear(Silent(late)));
  const RawLengths& mean = lesson.Last().Signal.Lengths;
  EXPECT_EQ(mean[0], 60 * kNominalSampleTime) << "a recording may begin late";
  EXPECT_EQ(mean[1], 31 * kNominalSampleTime) << "of both presses";
}

/// Frames are letters, and a piece of a frame is a small one.
TEST(RawLesson, KeepsFewOfTheFramesOfAHeldKey) {
  const std::map<char, RunVector> frames = {{'A', Frame(kKey)},
                                            {'a', First(Frame(kKey), 11)},
                                            {'B', Frame(kOtherKey)},
                                            {'b', First(Frame("2"), 5)}};
  for (const auto& [held, kept] : {std::pair("AAAAAAa", "AAA"),
                                   {"AAAAAA", "AAA"},
                                   {"BAAAAAa", "BAAA"},
                                   {"ABABABABAa", "ABABAB"},
                                   {"ABABa", "ABAB"},
                                   {"AAb", "AAb"},
                                   {"Bb", "Bb"},
                                   {"A", "A"}}) {
    RunVector runs, wanted;
    for (const char* frame = held; *frame != 0; ++frame)
      runs = runs.empty() ? frames.at(*frame) : Then(runs, kFrameGap, frames.at(*frame));
    for (const char* frame = kept; *frame != 0; ++frame)
      wanted = wanted.empty() ? frames.at(*frame) : Then(wanted, kFrameGap, frames.at(*frame));
    RawLesson lesson;
    ASSERT_TRUE(lesson.Hear({runs, true}));
    EXPECT_EQ(lesson.Last().Signal.Lengths.size(), wanted.size()) << held;
  }
}

}  // namespace
}  // namespace keplo
