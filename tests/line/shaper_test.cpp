#include "line/shaping/shaper.h"

#include <gtest/gtest.h>

#include <set>

#include "line/shaping/clean_press.h"
#include "line/shaping/hold_press.h"
#include "press_builder.h"
#include "signal/timing.h"

namespace keplo {
namespace {

using tests::Clean;
using tests::Heard;
using tests::kNecBits;
using tests::kRc5Bits;
using tests::kSonyBits;

const std::vector<std::pair<std::int16_t, std::string>> kPresses = {
    {kNec, kNecBits}, {kSony, kSonyBits}, {kRc5, kRc5Bits}};

PulseTrain Shaped(const PulseTrain& press, std::size_t bytes = kMonitorCaptureBytes) {
  return ShapePress(press, bytes, LineOptions{});
}

/// Lengths in samples of 55 us of the runs of a frame: marks if begin is 0, spaces if it is 1.
std::set<int> RunsOf(const PulseTrain& press, std::size_t begin) {
  const PulseTrain runs = SplitFrames(press).front().Runs;
  std::set<int> lengths;
  for (std::size_t i = begin; i < runs.size(); i += 2) lengths.insert((runs[i] + 27) / 55);
  return lengths;
}

TEST(ShapePress, UndoesTheMarkExcessAndTheJitter) {
  for (const int excess : {-100, 0, 60, 200}) {
    for (const int jitter : {0, 40}) {
      SynthOptions options;
      options.MarkExcessUs = excess;
      options.JitterUs = jitter;
      const PulseTrain press = Shaped(SynthPress(kRc5, kRc5Bits, options));
      // 889 us are 16.2 samples of 55 us.
      EXPECT_EQ(RunsOf(press, 0), (std::set{16, 17, 32})) << excess << ' ' << jitter;
      EXPECT_EQ(RunsOf(press, 1), (std::set{16, 17, 32})) << excess << ' ' << jitter;
    }
  }
}

TEST(ShapePress, KeepsTheWholeTimeAndThePlacesOfItsFrames) {
  for (const auto& [kind, bits] : kPresses) {
    const PulseTrain press = Clean(kind, bits, 70);
    const PulseTrain shaped = Shaped(press, 4000);
    EXPECT_EQ(LengthOf(shaped), LengthOf(press));
    const std::vector<Frame> before = SplitFrames(press);
    const std::vector<Frame> after = SplitFrames(shaped);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(after[i].Start, before[i].Start, 28);
  }
}

TEST(ShapePress, LeavesOutAFrameThatTheBufferCuts) {
  // SONY frames at 0, 45 and 90 ms, each about 18 ms long; silence for the frame's end needs 5.7 ms more.
  const PulseTrain press = Clean(kSony, kSonyBits);
  const auto framesIn = [&](std::size_t bytes) { return SplitFrames(Shaped(press, bytes)).size(); };
  EXPECT_EQ(framesIn(510), 3U);
  EXPECT_EQ(framesIn(230), 2U);
  EXPECT_EQ(framesIn(120), 1U);
  EXPECT_EQ(framesIn(10), 1U) << "the first frame stays, or nothing would be left";
}

TEST(ShapePress, LeavesAPressOfNoPlainLineCodeAsItIs) {
  const std::vector<PulseTrain> presses = {
      {},
      {500},
      {2666, 889, 444, 444, 444, 444, 444, 888, 444, 1332, 1332, 888, 444, 444, 444, 90000},  // three lengths
      {300, 900, 300, 900, 300, 2100, 300, 900, 300, 2100, 300, 90000},  // marks short beyond any receiver
      {560, 560, 560, 560, 560, 560, 560, 560, 560, 90000},              // all alike
  };
  for (const PulseTrain& press : presses) EXPECT_EQ(Shaped(press), press);
}

TEST(CleanPress, LeavesOutWhatIsNoPartOfTheSignal) {
  for (const auto& [kind, bits] : kPresses) {
    const PulseTrain whole = Clean(kind, bits, 50);
    EXPECT_EQ(CleanPress(whole), whole);

    PulseTrain glitched = whole;
    for (const std::size_t place : {5U, 12U}) {
      const int run = glitched[place];
      glitched[place] = 200;
      glitched.insert(glitched.begin() + place + 1, {40, run - 240});
    }
    EXPECT_EQ(CleanPress(glitched), whole);
  }
}

TEST(CleanPress, LeavesOutFramesThatTheRecordingCut) {
  for (const auto& [kind, bits] : {kPresses[1], kPresses[2]}) {
    const PulseTrain whole = Clean(kind, bits, 50);
    const std::size_t runs = SplitFrames(whole).front().Runs.size();
    const PulseTrain begunLate(whole.begin() + 6, whole.end());
    EXPECT_EQ(SplitFrames(CleanPress(begunLate)).size(), 2U);
    EXPECT_EQ(SplitFrames(CleanPress(begunLate)).front().Runs.size(), runs);

    const PulseTrain endedEarly(whole.begin(), whole.end() - 7);
    EXPECT_EQ(SplitFrames(CleanPress(endedEarly)).size(), 2U);
  }
}

TEST(CleanPress, LeavesOutADamagedFrameBesideAWholeOneOnly) {
  const auto damaged = [](PulseTrain press) {
    press[9] += press[10] + press[11] + 1500;  // a mark that the receiver missed
    press.erase(press.begin() + 10, press.begin() + 12);
    return press;
  };
  EXPECT_EQ(SplitFrames(CleanPress(damaged(Clean(kSony, kSonyBits)))).size(), 2U);
  EXPECT_EQ(Heard(damaged(Clean(kSony, kSonyBits))), kSonyBits);
  const PulseTrain single = damaged(Clean(kNec, kNecBits));
  EXPECT_EQ(CleanPress(single), single) << "NEC dittos hold no code";
}

TEST(HoldPress, SendsASingleFrameAtThePeriodOfItsProtocol) {
  const std::vector<std::pair<std::vector<std::int64_t>, PulseTrain>> cases = {
      {{0, 108'000, 216'000}, Clean(kNec, kNecBits, 50, 0)},
      {{0, 113'800, 227'600}, Clean(kRc5, kRc5Bits, 50, 0)},
      {{0, 45'000, 90'000, 135'000, 180'000, 225'000},
       [] {
         const Frame frame = SplitFrames(Clean(kSony, kSonyBits)).front();
         return JoinFrames({frame}, frame.End() + 90'000);
       }()},
  };
  for (const auto& [starts, press] : cases) {
    const std::vector<Frame> frames = SplitFrames(HoldPress(press, 250));
    std::vector<std::int64_t> held;
    for (const Frame& frame : frames) held.push_back(frame.Start);
    EXPECT_EQ(held, starts);
    EXPECT_EQ(frames.back().Runs, SplitFrames(press).front().Runs);
    EXPECT_EQ(HoldPress(press, 0), press);
  }
}

TEST(HoldPress, NeverLetsFramesOverlap) {
  const PulseTrain press = Clean(kNec, std::string(56, '1') + std::string(56, '0'), 0, 0);
  const std::vector<Frame> frames = SplitFrames(HoldPress(press, 250));
  ASSERT_EQ(frames.size(), 2U);
  EXPECT_EQ(frames[1].Start - frames[0].End(), 20'000);
}

TEST(HoldPress, LeavesOtherPressesAsRecorded) {
  const PulseTrain repeated = Clean(kNec, kNecBits, 0, 1);
  EXPECT_EQ(HoldPress(repeated, 250), repeated);
  const PulseTrain single = Clean(kNec, kNecBits, 0, 0);
  const PulseTrain headless(single.begin() + 10, single.end());
  EXPECT_EQ(HoldPress(headless, 250), headless) << "sent twice it would be read as a code of 28 bits";
  EXPECT_EQ(Heard(headless), "no-frame");
}

TEST(CleanPress, StaysWithinBoundsOnEndlessGlitches) {
  PulseTrain train;
  for (int i = 0; i < 300; ++i) train.insert(train.end(), {kLongestPulse, 50});
  train.push_back(600);
  for (const int run : CleanPress(train)) EXPECT_LE(run, kLongestPulse);
}

}  // namespace
}  // namespace keplo
