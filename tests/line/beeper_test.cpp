#include "line/beeper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "doubles/temp_folder.h"
#include "simulated_port.h"

namespace keplo {
namespace {

TEST(Beeper, PlaysTonesOfTheirPitchAndLengthThatBeginAndEndSoftly) {
  const tests::TempFolder folder;
  const std::string played = (folder.Path() / "played").string();
  folder.Write("asound.conf", "pcm.!default { type file slave.pcm { type null } file \"" + played + "\" }");
  tests::SimulatedPort calls;  // for its clock
  std::vector<std::string> told;
  Beeper beeper(calls, [&](const std::string& text) { told.push_back(text); });
  setenv("ALSA_CONFIG_PATH", (folder.Path() / "none").c_str(), 1);
  for (int tone = 0; tone < 2; ++tone) beeper.Sound(5000, 1);
  EXPECT_EQ(told.size(), 1U) << "told once, and tried again below";
  setenv("ALSA_CONFIG_PATH", (folder.Path() / "asound.conf").c_str(), 1);
  for (const auto& [frequency, duration] : {std::pair(5000, 50), {600, 200}}) {
    const auto end = calls.Now() + std::chrono::milliseconds(duration);
    beeper.Sound(frequency, duration);
    EXPECT_EQ(calls.Now(), end) << "the device takes it at once";
    const std::string bytes = folder.Read("played");
    std::vector<std::int16_t> tone(bytes.size() / 2);
    std::memcpy(tone.data(), bytes.data(), tone.size() * 2);
    while (!tone.empty() && tone.back() == 0) tone.pop_back();
    EXPECT_NEAR(static_cast<double>(tone.size()) / 48, duration, 3);
    std::vector<std::size_t> rises;
    for (std::size_t i = 1; i < tone.size(); ++i) {
      if (tone[i - 1] < 0 && tone[i] >= 0) rises.push_back(i);
    }
    ASSERT_GT(rises.size(), 20U);
    const auto waves = static_cast<double>(rises.size() - 1);
    EXPECT_NEAR(48'000 * waves / static_cast<double>(rises.back() - rises[0]), frequency, frequency * 0.005);
    EXPECT_LT(std::abs(tone[1]) + std::abs(tone[tone.size() - 2]), 600) << "a click";
  }
}

}  // namespace
}  // namespace keplo
