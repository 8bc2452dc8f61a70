#include "synth/synth.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>

#include "press_builder.h"
#include "signal/first_analysis.h"
#include "synth/sample_presses.h"

namespace keplo::tests {
namespace {

TEST(SynthPress, MakesTheFramesOfEachProtocol) {
  using Frames = std::vector<PulseTrain>;
  using Starts = std::vector<std::int64_t>;
  const PulseTrain nec = Clean(kNec, "10", 0, 1);
  EXPECT_EQ(FramesOf(nec), (Frames{{9000, 4500, 562, 1688, 562, 563, 562}, {9000, 2250, 562}}));
  EXPECT_EQ(StartsOf(nec), (Starts{0, 108'000}));
  const PulseTrain sony = Clean(kSony, "10", 50, 0);
  EXPECT_EQ(FramesOf(sony).at(1), (PulseTrain{2450, 550, 1250, 550, 650}));
  EXPECT_EQ(StartsOf(sony), (Starts{0, 45'000, 90'000})) << "SONY never sends fewer frames";
  const PulseTrain rc5 = Clean(kRc5, "1101", 0, 1);
  EXPECT_EQ(FramesOf(rc5).at(0), (PulseTrain{889, 889, 1778, 1778, 889}));
  EXPECT_EQ(StartsOf(rc5), (Starts{0, 113'800}));
}

/// Codes that the analysis can read: their shortest marks and spaces are not outnumbered.
const std::vector<std::pair<std::int16_t, std::vector<std::string>>> kReadable = {
    {kNec, {"00100000110111110001000011101111", "00000001111111101101100000100111", "0000000000001"}},
    {kSony, {"101010010000", "000000010000", "111111000000"}},
    {kRc5, {"11000000001100", "11000000010001", "11000111000001"}},
};

TEST(SynthPress, IsHeardAsSentWhateverReceiverAndRemote) {
  std::mt19937 generator(1);
  for (const auto& [kind, codes] : kReadable) {
    for (const std::string& code : codes) {
      for (int round = 0; round < 50; ++round) {
        const auto from = [&](int least, int most) {
          return least + static_cast<int>(generator() % static_cast<unsigned>(most - least + 1));
        };
        SynthOptions options{from(-100, 200), from(0, 30), from(-50, 40) / 1000.0,
                             90'000,          from(0, 3),  static_cast<std::uint32_t>(generator())};
        LineOptions line;
        line.SampleTime = from(40, 70);
        EXPECT_EQ(Heard(SynthPress(kind, code, options), line), code)
            << "excess " << options.MarkExcessUs << " jitter " << options.JitterUs << " clock "
            << options.ClockError << " repeats " << options.Repeats << " seed " << options.Seed
            << " sample time " << line.SampleTime;
      }
    }
  }
}

std::string FileText(const std::string& name) {
  std::ifstream file(KEPLO_SOURCE_DIR "/samples/" + name);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(SamplePresses, StandInTheSamplesFolderAndAreHeard) {
  for (const SamplePress& sample : SamplePresses()) {
    const std::string text = FileText(std::string(sample.File));
    EXPECT_EQ(text, sample.Text()) << sample.File;
    EXPECT_EQ(Heard(ParsePulseText(text, sample.File).at(0)), sample.Code()) << sample.File;
  }
  EXPECT_EQ(FileText("index.json"), SampleIndex());
}

}  // namespace
}  // namespace keplo::tests
