#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <optional>
#include <string>

#include "doubles/outside_screen.h"
#include "doubles/temp_folder.h"
#include "window/layout.h"

namespace keplo::tests {
namespace {

/// A key of a remote that no first install knows.
std::string UnknownPress() {
  std::string text = "pulse 9000\nspace 4500\n";
  for (int digit = 0; digit < 32; ++digit) {
    text += "pulse 560\nspace " + std::to_string(digit % 3 == 0 ? 1690 : 560) + "\n";
  }
  return text + "pulse 560\n";
}

class WindowProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const std::string missing = OutsideScreen::Missing(); !missing.empty()) {
      GTEST_SKIP() << "needs " << missing;
    }
    screen_.emplace();
    const std::filesystem::path opener = home_.Write("xdg-open", "#!/bin/sh\necho \"$1\" > \"$0.told\"\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  }

  Texts Program(const Texts& more = {}) const {
    Texts words = {"env", "PATH=" + home_.Path().string() + ":" + std::getenv("PATH"), KEPLO_WINDOW,
                   "--app-path", home_.Path() / "keplo"};
    words.insert(words.end(), more.begin(), more.end());
    return screen_->Here(words);
  }
  bool Start(const Texts& more) {
    program_.emplace(Program(more));
    return MainWindowComes();
  }

  /// Waits for the main window, in full size.
  bool MainWindowComes() {
    window_ = screen_->Focus("Orlo.s Keplo");
    at_ = screen_->PartOf(window_);
    return !window_.empty();
  }

  /// Where a control lies on the screen.
  ScreenPart PartOf(const char* control) const {
    const double scale = static_cast<double>(at_.Width) / kFullInner.Width;
    const Place& place = FindControl(control)->Bounds;
    const auto pixels = [&](int twips) { return static_cast<int>(std::lround(twips * scale)); };
    const int menuHeight = at_.Height - pixels(kFullInner.Height);
    return {at_.X + pixels(place.Left), at_.Y + menuHeight + pixels(place.Top), pixels(place.Width),
            pixels(place.Height)};
  }
  void Keys(const std::string& keys) { screen_->Keys(keys); }
  std::string ConfigFile() const { return home_.Read("keplo/keplo.cfg"); }

  static constexpr std::uint32_t kGreen = 0x00FF00;

  TempFolder home_;
  std::optional<OutsideScreen> screen_;
  std::optional<Running> program_;
  std::string window_;
  ScreenPart at_;
};

TEST_F(WindowProgram, LearnsAPressByKeysAloneIntoAFirstInstall) {
  const std::string press = home_.Write("press.mode2", UnknownPress());
  Texts words = {"--hold", "0", "--replay"};
  words.insert(words.end(), 200, press);
  ASSERT_TRUE(Start(words));
  ExpectPart(ConfigFile(), "[END]");  // an empty folder gets a first install

  // What is pressed before the program has come up, or while it records, counts for nothing.
  EXPECT_TRUE(Until([&] {
    Keys("F1");
    return home_.Read("xdg-open.told").ends_with("docs/help/index.html\n");
  }));
  Keys("Tab");  // to Record, which comes after Send
  EXPECT_TRUE(Until([&] {
    Keys("space");
    return screen_->Share(PartOf("CodeStr"), kGreen) > 0.5;
  })) << "once a code came twice it is trusted";
  for (int place = 0; place < 12; ++place) Keys("Tab");  // to Save
  Keys("space");
  ASSERT_FALSE(screen_->Focus("Input new command name").empty());
  screen_->Type("FROM_OUTSIDE");
  Keys("Return");
  EXPECT_TRUE(Until([&] {
    return ConfigFile().find("G10010010010010010010010010010010,FROM_OUTSIDE\r\n") != std::string::npos;
  })) << ConfigFile();

  ASSERT_TRUE(MainWindowComes());
  Keys("alt+f x");
  EXPECT_EQ(program_->WaitForEnd(), 0);
}

TEST_F(WindowProgram, ASecondStartBringsTheWindowToTheFront) {
  program_.emplace(Program({"--ports", "1"}));
  ASSERT_TRUE(Until([&] { return !screen_->Windows("Orlo.s Keplo").empty(); }));
  const std::string before = screen_->Focused();
  EXPECT_EQ(Running(Program()).WaitForEnd(), 0);
  const std::string window = screen_->Focused();
  EXPECT_NE(window, before) << "no window manager hands the keyboard on";
  EXPECT_EQ(screen_->Windows("Orlo.s Keplo"), window + "\n");
}

}  // namespace
}  // namespace keplo::tests
