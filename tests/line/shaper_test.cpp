#include "line/shaping/shaper.h"

#include <gtest/gtest.h>

#include <set>

#include "line/shaping/clean_press.h"
#include "line_script.h"
#include "press_builder.h"
#include "signal/first_analysis.h"

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

PulseTrain Shaped(const PulseTrain& press, std::size_t bytes = kMonitorCaptureBytes) {
  PulseTrain shaped = {1, 2, 3};
  ShapePress(press, bytes, LineOptions{}, Space(), shaped);
  return shaped;
}

/// Lengths in samples of 55 us of the runs of a frame: marks if begin is 0, spaces if it is 1.
std::set<int> LengthsOf(const PulseTrain& press, std::size_t begin) {
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
      EXPECT_EQ(LengthsOf(shaped, 0), (std::set{16, 17, 32})) << excess << ' ' << jitter;
      EXPECT_EQ(LengthsOf(shaped, 1), (std::set{16, 17, 32})) << excess << ' ' << jitter;
      const auto before = StartsOf(press);
      const auto after = StartsOf(shaped);
      for (std::size_t i = 0; i < after.size(); ++i)
        EXPECT_NEAR(after[i], before[i], 28) << "its place in time";
      EXPECT_EQ(LengthOf(shaped), LengthOf(press));
    }
  }
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

/// The lengths in samples that a line hands on of a press.
std::string Sampled(const std::string& press, int holdMs, std::size_t bytes, double sampleTime) {
  LineOptions options;
  options.HoldMs = holdMs;
  options.SampleTime = sampleTime;
  return Joined(RunsOf(SignalOfPress(ReadPlayed(press).Lengths, bytes, options)));
}

TEST(SignalOfPress, IsOfWholeSamplesOnlyOfAPlainLineCode) {
  const std::string sony = "2500,500,1300,500,700,480,1320,500,680,520,720,500,1280";
  const std::string nec = "9060,4440,620,500,620,1630,640,480,620,1640,600,520,620";
  const std::string rc5 = "950,830,950,830,1840,1720,950,830,1840";
  const struct {
    int HoldMs;
    std::size_t Bytes;
    double SampleTime;
    std::string Press, Samples;
  } rows[] = {
      {0, 60, 55, sony, "44 11 21 11 11 11 22 11 11 11 11 11 22 272"},
      {90, 510, 55, sony,
       "44 11 21 11 11 11 22 11 11 11 11 11 22 610 44 11 21 11 11 11 22 11 11 11 11 11 22 3054"},
      {91, 510, 55, sony,
       "44 11 21 11 11 11 22 11 11 11 11 11 22 610 44 11 21 11 11 11 22 11 11 11 11 11 22 610 44 11 21 11 11 "
       "11 22 11 11 11 11 11 22 2236"},
      {0, 60, 55, nec, "164 82 11 11 10 30 10 10 10 31 10 10 11 80"},
      {250, 510, 55, nec,
       "164 82 11 11 10 30 10 10 10 31 10 10 11 1564 164 82 11 11 10 30 10 10 10 31 10 10 11 1716"},
      {0, 60, 55, "8000,4000,620,500,620,1060,640,480,620,1040,600,520,620",
       "144 74 11 11 10 20 10 10 10 20 10 10 11 129"},
      {0, 60, 55, rc5, "17 17 16 16 32 32 16 16 32 286"},
      {0, 60, 55, "1840,1720,950,830,950,830,1840,1720,950", "32 32 17 17 16 16 32 32 16 270"},
      {250, 510, 55, rc5, "17 17 16 16 32 32 16 16 32 1875 17 17 16 16 32 32 16 16 32 1817"},
      {250, 510, 55, rc5 + ",20000," + rc5, "17 17 16 16 32 32 16 16 32 365 17 17 16 16 32 32 16 16 32 3327"},
      {0, 60, 50, sony, "48 13 24 12 13 12 24 12 12 12 12 12 24 250"},
      {0, 40, 150, "2400,600,1200,600,600,600,1200,600,600,600,600", "21 5 8 4 5 4 8 4 4 4 4 249"},
      {0, 40, 149, sony, "21 5 8 4 5 4 8 4 4 4 4 4 8 237"},
      {0, 40, 151, sony, "17 3 8 4 4 4 8 4 4 4 4 4 8 244"},
      {0, 60, 55, "2500,500,1300,500,300,99,301,480,1320,500,680,520,720,500,1280",
       "44 11 21 11 11 11 22 11 11 11 11 11 22 272"},
      {0, 60, 55, "2500,500,1300,500,300,100,300,480,1320,500,680,520,720,500,1280",
       "45 10 23 9 6 2 5 9 24 9 12 10 13 9 23 271"},
      {0, 60, 55, "999,3000," + sony, "44 11 21 11 11 11 22 11 11 11 11 11 22 272"},
      {0, 60, 55, "1000,3000," + sony, "18 55 45 9 24 9 13 8 24 10 12 9 13 10 23 198"},
      {0, 40, 55, "500,3000,2500,600", "9 55 45 211"},
      {0, 60, 55, "500,3000,1999,600,1200", "9 55 36 11 22 347"},
      {0, 230, 55, sony.substr(9) + ",20000," + sony, "44 11 21 11 11 11 22 11 11 11 11 11 22 1632"},
      {0, 230, 55, sony + ",20000,2500,500,1300,500,700,480,1320,500,",
       "44 11 21 11 11 11 22 11 11 11 11 11 22 1632"},
      {250, 510, 55, "620,500,620,1630,640,480,620,1640,600,520,620",
       "11 11 10 30 10 10 10 31 10 10 11 3926"},
      {0, 230, 55, "350,830,950,830,1840,1720,950,830,1840,20000," + rc5,
       "17 17 16 16 32 32 16 16 32 354 17 17 16 16 32 32 16 16 32 1098"},
      {0, 120, 55, sony + ",20000," + sony,
       "44 11 21 11 11 11 22 11 11 11 11 11 22 365 44 11 21 11 11 11 22 11 11 11 11 11 22 179"},
      {250, 230, 55, sony + ",6000," + sony,
       "45 10 23 9 13 9 24 9 12 10 13 9 23 109 46 9 23 9 13 9 24 9 12 10 13 9 23 1313"},
      {250, 230, 55, sony + ",6001," + sony,
       "44 11 21 11 11 11 22 11 11 11 11 11 22 110 44 11 21 11 11 11 22 11 11 11 11 11 22 1314"},
      {0, 230, 55, nec + ",20000,9060,4440,620,500,620,500,620",
       "164 82 11 11 10 30 10 10 10 31 10 10 11 363 164 82 11 11 10 10 10 779"},
      {0, 60, 55, nec + ",39000,9060,2200,620", "164 82 11 11 10 30 10 10 10 31 10 10 11 80"},
      {0, 40, 55, "900,500,700", "16 9 13 282"},
      {0, 60, 55, "9260,4240,820,300,820,1420,820,300,820,1420,820,300,820",
       "164 82 11 11 10 30 10 10 10 31 10 10 11 80"},
      {0, 60, 55, "9260,4240,821,299,821,1420,821,299,821,1420,821,299,821",
       "168 77 15 6 15 26 14 6 15 26 15 5 15 77"},
      {0, 60, 55, "8840,4660,400,720,400,1840,400,720,400,1840,400,720,400",
       "164 82 11 11 10 30 10 10 10 31 10 10 11 80"},
      {0, 60, 55, "8840,4660,399,721,399,1840,399,721,399,1840,399,721,399",
       "161 84 8 13 7 34 7 13 7 34 7 13 7 85"},
      {0, 40, 55, "560,560,560,560,560,560,560,560,560,9000", "10 10 11 10 10 10 10 10 11 228"},
      {0, 40, 55, "300,900,300,900,300,2100,300,900,300,2100,300,9000", "5 17 5 17 5 38 6 16 6 38 5 162"},
      {0, 40, 55, "2500,180,1620,180,1020,180,1620,180,1020,180,1020", "45 4 29 3 19 3 30 3 19 3 18 144"},
      {0, 111, 55, sony + ",20000," + sony,
       "44 11 21 11 11 11 22 11 11 11 11 11 22 365 44 11 21 11 11 11 22 11 11 11 11 11 22 107"},
      {0, 110, 55, sony + ",20000," + sony, "44 11 21 11 11 11 22 11 11 11 11 11 22 672"},
      {110, 230, 55, sony + ",500,1280,500,1280,500,1280,500,1280,500,1280,500,1280,500,1280,500,1280",
       "44 11 21 11 11 11 22 11 11 11 11 11 22 11 22 11 22 11 21 11 22 10 22 11 22 11 22 11 21 363 44 11 21 "
       "11 11 11 22 11 11 11 11 11 22 11 22 11 22 11 21 11 22 10 22 11 22 11 22 11 21 539"},
      {0, 60, 55, "850,830,950,830,1840,1720,950,830,1840", "17 17 16 16 32 32 16 16 32 286"},
      {0, 230, 55, sony + ",20000,2500,500,1300,500,1100,480,1320,500,680,520,720,500,1280,20000," + sony,
       "44 11 21 11 11 11 22 11 11 11 11 11 22 365 44 11 21 11 22 11 22 11 11 11 11 11 22 361 44 11 21 11 11 "
       "11 22 11 11 11 11 11 22 479"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Sampled(row.Press, row.HoldMs, row.Bytes, row.SampleTime), row.Samples) << row.Press;
}

}  // namespace
}  // namespace keplo::tests
