#include "line/beeper.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "doubles/temp_folder.h"

namespace keplo {
namespace {

TEST(Beeper, PlaysTonesOfTheirPitchAndLengthThatBeginAndEndSoftly) {
  const tests::TempFolder folder;
  const std::string played = (folder.Path() / "played").string();
  folder.Write("asound.conf", "pcm.!default { type file slave.pcm { type null } file \"" + played + "\" }");
  setenv("ALSA_CONFIG_PATH", (folder.Path() / "asound.conf").c_str(), 1);
  KernelCalls calls;
  std::string told;
  Beeper beeper(calls, [&](const std::string& text) { told += text; });
  for (const auto& [frequency, duration] : {std::pair(5000, 50), {2000, 300}, {600, 200}}) {
    const auto begin = calls.Now();
    beeper.Sound(frequency, duration);
    EXPECT_GE(calls.Now() - begin, std::chrono::milliseconds(duration)) << "the device takes it at once";
    ASSERT_EQ(told, "");
    std::stringstream bytes;
    bytes << std::ifstream(played, std::ios::binary).rdbuf();
    std::vector<std::int16_t> tone(bytes.str().size() / 2);
    std::memcpy(tone.data(), bytes.str().data(), tone.size() * 2);
    while (!tone.empty() && tone.back() == 0) tone.pop_back();
    EXPECT_NEAR(static_cast<double>(tone.size()) / 48, duration, 3);
    std::vector<double> crossings;
    for (std::size_t i = 1; i < tone.size(); ++i) {
      if (tone[i - 1] < 0 && tone[i] >= 0) crossings.push_back(static_cast<double>(i));
    }
    ASSERT_GT(crossings.size(), 20U);
    const double period = (crossings.back() - crossings.front()) / static_cast<double>(crossings.size() - 1);
    EXPECT_NEAR(48'000 / period, frequency, frequency * 0.005);
    const auto click = [](std::int16_t sample) { return std::abs(sample) > 300; };
    EXPECT_FALSE(click(tone[0]) || click(tone[1]) || click(tone.back()) || click(tone[tone.size() - 2]));
  }
}

}  // namespace
}  // namespace keplo
