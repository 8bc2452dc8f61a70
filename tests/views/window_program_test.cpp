#include <gtest/gtest.h>

#include <algorithm>
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

constexpr std::uint32_t kGreen = 0x00FF00, kRed = 0xFF0000;

std::size_t PixelsOf(std::uint32_t colour, const Picture& picture) {
  return static_cast<std::size_t>(std::count(picture.begin(), picture.end(), colour));
}
bool ShowsTrace(const Picture& picture) { return PixelsOf(kGreen, picture) > 0; }
auto OtherThan(const Picture& before) {
  return [&before](const Picture& now) { return now != before; };
}
auto SameAs(const Picture& before) {
  return [&before](const Picture& now) { return now == before; };
}

class WindowProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const std::string missing = OutsideScreen::Missing(); !missing.empty()) {
      GTEST_SKIP() << "needs " << missing;
    }
    screen_.emplace();
  }

  void Start(const Words& more) {
    Words words = {KEPLO_WINDOW, "--app-path", home_.Path() / "keplo"};
    words.insert(words.end(), more.begin(), more.end());
    program_.emplace(screen_->Here(words));
  }

  /// Waits for the main window, in full size.
  bool MainWindowComes() {
    window_ = screen_->Focus("Orlo.s Keplo");
    at_ = screen_->PartOf(window_);
    return !window_.empty();
  }

  /// Where the inside of a control lies on the screen.
  ScreenPart PartOf(const char* control) const {
    const double scale = static_cast<double>(at_.Width) / kFullInner.Width;
    const Place& place = FindControl(control)->At;
    const auto pixels = [&](int twips) { return static_cast<int>(std::lround(twips * scale)); };
    const int menuHeight = at_.Height - pixels(kFullInner.Height);
    return {at_.X + pixels(place.Left), at_.Y + menuHeight + pixels(place.Top), pixels(place.Width),
            pixels(place.Height)};
  }
  void Click(const char* control) const { screen_->Click(PartOf(control)); }

  bool Focus(const std::string& title) { return !screen_->Focus(title).empty(); }
  /// Waits until the code of a recording stands on a colour.
  bool CodeStandsOn(std::uint32_t colour) const {
    const auto mostly = [&](const Picture& field) { return PixelsOf(colour, field) > field.size() / 2; };
    return !screen_->LookUntil(PartOf("CodeStr"), mostly).empty();
  }

  bool AnswerYes() {
    if (!Focus("^Keplo$")) return false;
    Keys("alt+y");
    return Until([&] { return screen_->Windows("^Keplo$").empty(); });
  }
  void Keys(const std::string& keys) { screen_->Keys(keys); }

  std::string ConfigFile() const { return home_.Read("keplo/keplo.cfg"); }
  bool FileHolds(const std::string& text) const {
    return Until([&] { return ConfigFile().find(text) != std::string::npos; });
  }

  TempFolder home_;
  std::optional<OutsideScreen> screen_;
  std::optional<Running> program_;
  std::string window_;
  ScreenPart at_;
};

TEST_F(WindowProgram, LearnsAPressFromOutsideIntoAFirstInstall) {
  const std::string press = home_.Write("press.mode2", UnknownPress());
  Start({"--hold", "0", "--replay", press, press});
  ASSERT_TRUE(MainWindowComes());
  EXPECT_NE(ConfigFile().find("[END]"), std::string::npos) << "an empty folder gets a first install";

  Keys("Tab space");  // Record, which comes behind Send
  EXPECT_TRUE(CodeStandsOn(kRed));
  Keys("space");  // once more: only a code that came twice is trusted
  EXPECT_TRUE(CodeStandsOn(kGreen));
  // Save stands twelve places behind Record.
  for (int place = 0; place < 12; ++place) Keys("Tab");
  Keys("space");
  ASSERT_TRUE(Focus("Input new command name"));
  screen_->Type("FROM_OUTSIDE");
  Keys("Return");
  EXPECT_TRUE(Until([&] { return ConfigFile().find(",FROM_OUTSIDE\r\n") != std::string::npos; }));
  EXPECT_NE(ConfigFile().find("G10010010010010010010010010010010,FROM_OUTSIDE"), std::string::npos);

  ASSERT_TRUE(MainWindowComes());
  Keys("alt+f x");
  EXPECT_EQ(program_->WaitForEnd(), 0);
}

TEST_F(WindowProgram, ShowsTheTraceAndBringsItBackPixelForPixel) {
  Start({"--replay", home_.Write("press.mode2", UnknownPress())});
  ASSERT_TRUE(MainWindowComes());
  const ScreenPart box = PartOf("Signal");
  EXPECT_FALSE(ShowsTrace(screen_->Look(box)));
  Click("RecButton");
  const Picture trace = screen_->LookUntil(box, ShowsTrace);
  ASSERT_FALSE(trace.empty());

  for (const char* changes : {"GExt", "Gshr", "HScroll1"}) {
    Click(changes);
    const Picture changed = screen_->LookUntil(box, OtherThan(trace));
    EXPECT_TRUE(ShowsTrace(changed)) << changes;
    Click("GReset");
    EXPECT_EQ(screen_->LookUntil(box, SameAs(trace)), trace) << changes;
  }

  Click("MinButton");
  EXPECT_TRUE(Until([&] { return screen_->PartOf(window_).Width < at_.Width / 2; }));
  EXPECT_LT(screen_->PartOf(window_).Height, at_.Height / 2);
  Click("MinButton");
  EXPECT_TRUE(Until([&] { return screen_->PartOf(window_) == at_; }));
  EXPECT_EQ(screen_->LookUntil(box, SameAs(trace)), trace);

  {
    const Running other(screen_->Here({KEPLO_WINDOW, "--app-path", home_.Path() / "other"}));
    EXPECT_FALSE(screen_->LookUntil(box, OtherThan(trace)).empty()) << "the other window covers it";
  }
  EXPECT_EQ(screen_->LookUntil(box, SameAs(trace)), trace);
}

TEST_F(WindowProgram, TakesAProtocolAndACommandThroughTheirWholeLives) {
  const std::string press = home_.Write("press.mode2", UnknownPress());
  Start({"--hold", "0", "--replay", press, press});
  ASSERT_TRUE(MainWindowComes());
  const std::string firstInstall = ConfigFile();

  Keys("alt+f n");
  ASSERT_TRUE(Focus("Protocol Parameters"));
  Keys("alt+n ctrl+a");
  screen_->Type("Outside");
  Keys("alt+s");
  ASSERT_TRUE(AnswerYes());
  EXPECT_TRUE(FileHolds("[Outside]\r\n# \r\nGPROTO= 3\r\n"));

  ASSERT_TRUE(MainWindowComes());
  Click("RecButton");
  EXPECT_TRUE(CodeStandsOn(kRed));
  Click("RecButton");
  EXPECT_TRUE(CodeStandsOn(kGreen));
  Click("SaveCmdButton");
  ASSERT_TRUE(Focus("Input new command name"));
  screen_->Type("POWER");
  Keys("Return");
  EXPECT_TRUE(FileHolds(",POWER\r\n"));

  ASSERT_TRUE(MainWindowComes());
  Click("SendButton");
  Click("IRCommand");  // tells what was sent
  Keys("ctrl+a ctrl+c alt+f e");
  ASSERT_TRUE(Focus("Protocol Parameters"));
  Keys("alt+d ctrl+a ctrl+v alt+s");
  ASSERT_TRUE(AnswerYes());
  EXPECT_TRUE(FileHolds("[Outside]\r\n# Outside / POWER\r\n"));

  ASSERT_TRUE(MainWindowComes());
  Click("DeleteCmdButton");
  ASSERT_TRUE(AnswerYes());
  EXPECT_TRUE(Until([&] { return ConfigFile().find(",POWER\r\n") == std::string::npos; }));
  ASSERT_TRUE(MainWindowComes());
  Keys("alt+f x");
  EXPECT_EQ(program_->WaitForEnd(), 0);
  EXPECT_TRUE(FileHolds("GREPEAT= 1\r\n\r\nG10,EMPTY\r\n\r\n[Template]")) << ConfigFile();

  Start({});
  ASSERT_TRUE(MainWindowComes());
  Keys("alt+f d");
  ASSERT_TRUE(AnswerYes());
  EXPECT_TRUE(Until([&] { return ConfigFile() == firstInstall; })) << ConfigFile();
  ASSERT_TRUE(MainWindowComes());
  Keys("alt+f x");
  EXPECT_EQ(program_->WaitForEnd(), 0);
  EXPECT_EQ(ConfigFile(), firstInstall);
}

TEST_F(WindowProgram, OpensTheManualInTheProgramThatOpensPages) {
  const std::filesystem::path opener = home_.Write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" > \"$0.told\"\n");
  std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
  program_.emplace(screen_->Here({"env", "PATH=" + home_.Path().string() + ":" + std::getenv("PATH"),
                                  KEPLO_WINDOW, "--app-path", home_.Path() / "keplo"}));
  ASSERT_TRUE(MainWindowComes());
  Keys("alt+h c");
  EXPECT_TRUE(Until([&] { return home_.Read("xdg-open.told").ends_with("docs/help/index.html"); }))
      << home_.Read("xdg-open.told");
}

TEST_F(WindowProgram, OpensOneWindowForAFolder) {
  Start({});
  ASSERT_TRUE(MainWindowComes());
  Running second(screen_->Here({KEPLO_WINDOW, "--app-path", home_.Path() / "keplo"}));
  ASSERT_TRUE(Focus("^Keplo$"));
  Keys("Return");
  EXPECT_EQ(second.WaitForEnd(), 1);

  ASSERT_TRUE(MainWindowComes());
  Keys("alt+f x");
  EXPECT_EQ(program_->WaitForEnd(), 0);
}

TEST_F(WindowProgram, TellsWhichRecordingCannotBeReadAndEnds) {
  Start({"--replay", "/nowhere/press.mode2"});
  ASSERT_TRUE(Focus("Keplo"));
  Keys("Return");
  EXPECT_EQ(program_->WaitForEnd(), 1);
}

}  // namespace
}  // namespace keplo::tests
