#include "line/shaping/shaper.h"

#include <gtest/gtest.h>

#include <set>

#include "line/shaping/clean_press.h"
#include "line/shaping/hold_press.h"
#include "press_builder.h"
#include "signal/timing.h"

namespace keplo::tests {
namespace {

/// One room for all presses, as a line has it: nothing of a press may reach the next one.
ShapingSpace& Space() {
  static ShapingSpace space;
  return space;
}

PulseTrain Cleaned(const PulseTrain& press) {
  PulseTrain clean = {1, 2, 3};
  CleanPress(press, Space(), clean);
  return clean;
}

PulseTrain Held(const PulseTrain& press, int holdMs = 250) {
  PulseTrain held = {1, 2, 3};
  HoldPress(press, holdMs, Space(), held);
  return held;
}

PulseTrain Shaped(const PulseTrain& press, std::size_t bytes = kMonitorCaptureBytes) {
  PulseTrain shaped = {1, 2, 3};
  ShapePress(press, bytes, LineOptions{}, Space(), shaped);
  return shaped;
}

/// Lengths in samples of 55 us of the runs of a frame: marks if begin is 0, spaces if it is 1.
std::set<int> RunsOf(const PulseTrain& press, std::size_t begin) {
  const PulseTrain runs = FramesOf(press).front();
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
      const PulseTrain press = SynthPress(kRc5, kRc5Bits, options);
      const PulseTrain shaped = Shaped(press);
      // 889 us are 16.2 samples of 55 us.
      EXPECT_EQ(RunsOf(shaped, 0), (std::set{16, 17, 32})) << excess << ' ' << jitter;
      EXPECT_EQ(RunsOf(shaped, 1), (std::set{16, 17, 32})) << excess << ' ' << jitter;
      const auto before = StartsOf(press);
      const auto after = StartsOf(shaped);
      for (std::size_t i = 0; i < after.size(); ++i)
        EXPECT_NEAR(after[i], before[i], 28) << "its place in time";
      EXPECT_EQ(LengthOf(shaped), LengthOf(press));
    }
  }
}

TEST(ShapePress, LeavesOutAFrameThatTheBufferCuts) {
  // SONY frames at 0, 45 and 90 ms, each about 18 ms long; silence for the frame's end needs 5.7 ms more.
  for (const auto& [bytes, frames] : {std::pair{510U, 3U}, {230U, 2U}, {120U, 1U}, {10U, 1U}})
    EXPECT_EQ(FramesOf(Shaped(Clean(kSony, kSonyBits), bytes)).size(), frames) << bytes;
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
  const PulseTrain sony = Clean(kSony, kSonyBits, 50);
  const PulseTrain rc5 = Clean(kRc5, kRc5Bits, 50);
  const auto glitched = [](PulseTrain press) {
    for (const std::ptrdiff_t place : {5, 12}) {
      const int run = std::exchange(press[static_cast<std::size_t>(place)], 200);
      press.insert(press.begin() + place + 1, {40, run - 240});
    }
    return press;
  };
  const auto damaged = [](PulseTrain press) {
    press[9] += press[10] + press[11] + 1500;  // a mark that the receiver missed
    press.erase(press.begin() + 10, press.begin() + 12);
    return press;
  };
  const auto flashed = [](PulseTrain press) {
    press.insert(press.begin(), {300, 2000});
    return press;
  };
  const auto begunLate = [](PulseTrain press) {
    press.front() -= 600;
    return press;
  };
  struct Case {
    std::string Name;
    PulseTrain Whole, Press;
    std::size_t Frames;
  };
  const std::vector<Case> cases = {
      {"a whole press", sony, sony, 3},
      {"two glitches", rc5, glitched(rc5), 3},
      {"SONY begun late", sony, {sony.begin() + 6, sony.end()}, 2},
      {"a flash ahead", sony, flashed(sony), 3},
      {"RC5 begun within its first mark", rc5, begunLate(rc5), 3},
      {"SONY ended early", sony, {sony.begin(), sony.end() - 7}, 2},
      {"RC5 ended early", rc5, {rc5.begin(), rc5.end() - 7}, 2},
      {"a damaged frame", sony, damaged(sony), 2},
  };
  for (const Case& c : cases) {
    const std::vector<PulseTrain> frames = FramesOf(Cleaned(c.Press));
    EXPECT_EQ(frames.size(), c.Frames) << c.Name;
    for (const PulseTrain& frame : frames) EXPECT_EQ(frame, FramesOf(c.Whole).front()) << c.Name;
  }
  const PulseTrain single = damaged(Clean(kNec, kNecBits));
  EXPECT_EQ(Cleaned(single), single) << "NEC dittos hold no code";

  PulseTrain endless;
  for (int i = 0; i < 300; ++i) endless.insert(endless.end(), {kLongestPulse, 50});
  endless.push_back(600);
  for (const int run : Cleaned(endless)) EXPECT_LE(run, kLongestPulse);
}

TEST(HoldPress, SendsASingleFrameAtThePeriodOfItsProtocol) {
  PulseTrain sony = FramesOf(Clean(kSony, kSonyBits)).front();
  sony.push_back(90'000);
  const PulseTrain nec = Clean(kNec, kNecBits, 50, 0);
  const std::string digits = std::string(56, '1') + std::string(56, '0');
  const PulseTrain endless = Clean(kNec, digits, 0, 0);
  struct Case {
    std::string Name;
    PulseTrain Press;
    std::vector<std::int64_t> Starts;
  };
  const std::vector<Case> cases = {
      {"NEC", nec, {0, 108'000, 216'000}},
      {"RC5", Clean(kRc5, kRc5Bits, 50, 0), {0, 113'800, 227'600}},
      {"SONY", sony, {0, 45'000, 90'000, 135'000, 180'000, 225'000}},
      {"longer than its period", endless, {0, LengthOf(FramesOf(endless).front()) + 20'000}},
      {"several frames", Clean(kNec, kNecBits, 0, 1), {0, 108'000}},
      // Sent twice it would be read as a code of 28 bits.
      {"without its leader", {nec.begin() + 10, nec.end()}, {0}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(StartsOf(Held(c.Press)), c.Starts) << c.Name;
    EXPECT_EQ(FramesOf(Held(c.Press)).front(), FramesOf(c.Press).front()) << c.Name;
    EXPECT_EQ(Held(c.Press, 0), c.Press) << c.Name;
  }
}

}  // namespace
}  // namespace keplo::tests
