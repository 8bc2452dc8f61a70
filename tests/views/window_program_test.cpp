#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

#include "doubles/outside_screen.h"
#include "doubles/temp_folder.h"

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
    const std::filesystem::path opener = home_.Write("xdg-open", "#!/bin/sh\necho \"$1\" >> \"$0.told\"\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  }

  Texts Program(const Texts& more = {}) const {
    Texts words = {"env", "PATH=" + home_.Path().string() + ":" + std::getenv("PATH"), KEPLO_WINDOW,
                   "--app-path", home_.Path() / "keplo"};
    words.insert(words.end(), more.begin(), more.end());
    return screen_->Here(words);
  }
  bool MainWindowComes() { return !screen_->Focus("Orlo.s Keplo").empty(); }

  /// Waits until the program accepts keys: before it is shown, and while it records, keys are ignored. Each
  /// F1 that it accepts opens the manual.
  bool Listens() {
    const auto before = pressed_;
    return Until([&] {
      Keys("F1");
      ++pressed_;
      const std::string reported = home_.Read("xdg-open.told");
      return reported.ends_with("docs/help/index.html\n") &&
             std::count(reported.begin(), reported.end(), '\n') > before;
    });
  }
  void Keys(const std::string& keys) { screen_->Keys(keys); }
  std::string ConfigFile() const { return home_.Read("keplo/keplo.cfg"); }

  TempFolder home_;
  std::optional<OutsideScreen> screen_;
  std::optional<Running> program_;
  std::ptrdiff_t pressed_ = 0;
};

TEST_F(WindowProgram, LearnsAPressByKeysAloneIntoAFirstInstall) {
  const std::string press = home_.Write("press.mode2", UnknownPress());
  program_.emplace(Program({"--hold", "0", "--replay", press, press}));
  ASSERT_TRUE(MainWindowComes());
  ExpectPart(ConfigFile(), "[END]");  // an empty folder gets a first install
  ASSERT_TRUE(Listens());
  Keys("Tab");  // to Record, which comes after Send
  for (int recording = 0; recording < 2; ++recording) {
    Keys("space");
    ASSERT_TRUE(Listens());
  }
  for (int place = 0; place < 12; ++place) Keys("Tab");  // to Save
  Keys("space");
  ASSERT_FALSE(screen_->Focus("Input new command name").empty());
  screen_->Type("FROM_OUTSIDE");
  Keys("Return");
  EXPECT_TRUE(Until([&] {
    return ConfigFile().find("G10010010010010010010010010010010,FROM_OUTSIDE\r\n") != std::string::npos;
  })) << ConfigFile();

  ASSERT_TRUE(MainWindowComes() && Listens());
  Keys("alt+f x");
  EXPECT_EQ(program_->WaitForEnd(), 0);
}

TEST_F(WindowProgram, ASecondStartBringsTheWindowToTheFront) {
  program_.emplace(Program({"--ports", "1"}));
  ASSERT_TRUE(Until([&] { return !screen_->Windows("Orlo.s Keplo").empty(); }));
  EXPECT_NE(screen_->Windows("Orlo.s Keplo"), screen_->Focused() + "\n");
  EXPECT_EQ(Running(Program()).WaitForEnd(), 0);
  EXPECT_TRUE(Until([&] { return screen_->Windows("Orlo.s Keplo") == screen_->Focused() + "\n"; }))
      << "no window manager hands the keyboard on";
}

}  // namespace
}  // namespace keplo::tests
