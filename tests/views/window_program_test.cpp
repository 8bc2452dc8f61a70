#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "doubles/temp_folder.h"

namespace keplo::tests {
namespace {

const std::filesystem::path kSamples = std::filesystem::path(KEPLO_SOURCE_DIR) / "samples";

using Words = std::vector<std::string>;

bool Installed(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

std::string Output(const std::string& command) {
  std::string text;
  FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
  std::array<char, 256> part{};
  while (const std::size_t length = fread(part.data(), 1, part.size(), pipe))
    text.append(part.data(), length);
  pclose(pipe);
  return text;
}

/// Looks again and again until something holds.
/// @return false if it does not within half a minute
bool Until(const std::function<bool()>& holds) {
  const auto last = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!holds()) {
    if (std::chrono::steady_clock::now() > last) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

/// A program that runs beside the test.
class Running {
 public:
  explicit Running(const Words& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    if (posix_spawnp(&process_, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
      process_ = -1;
  }
  ~Running() {
    if (process_ <= 0) return;
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  /// @return the exit code once it has ended
  std::optional<int> Ended() {
    int status = 0;
    if (process_ <= 0 || waitpid(process_, &status, WNOHANG) != process_) return std::nullopt;
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
  }

 private:
  pid_t process_ = -1;
};

/// A screen of its own for the program.
class WindowProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"Xvfb", "xdotool"}) {
      if (!Installed(program)) GTEST_SKIP() << "needs " << program;
    }
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("QT_SCALE_FACTOR", "1", 1);
    std::array<int, 2> number{};
    ASSERT_EQ(pipe(number.data()), 0);
    screen_.emplace(Words{"Xvfb", "-displayfd", std::to_string(number[1]), "-screen", "0", "1280x800x24"});
    close(number[1]);
    FILE* told = fdopen(number[0], "r");
    std::array<char, 16> display{};
    ASSERT_NE(fgets(display.data(), display.size(), told), nullptr) << "Xvfb found no free display";
    fclose(told);
    setenv("DISPLAY", (":" + std::to_string(std::atoi(display.data()))).c_str(), 1);
  }

  void Start(const Words& more) {
    Words words = {KEPLO_WINDOW, "--app-path", home_.Path() / "keplo"};
    words.insert(words.end(), more.begin(), more.end());
    program_.emplace(words);
  }

  /// Waits for a window by a part of its title and gives it the keyboard.
  bool Focus(const std::string& title) {
    return Until([&] {
      const std::string found = Output("xdotool search --onlyvisible --name \"" + title + "\"");
      if (found.empty()) return false;
      const std::string window = found.substr(0, found.find('\n'));
      std::system(("xdotool windowfocus " + window).c_str());
      return Output("xdotool getwindowfocus") == window + "\n";
    });
  }

  static void Keys(const std::string& keys) { std::system(("xdotool key " + keys).c_str()); }
  static void Type(const std::string& text) { std::system(("xdotool type " + text).c_str()); }

  std::string ConfigFile() const { return home_.Read("keplo/keplo.cfg"); }
  std::optional<int> WaitForEnd() {
    std::optional<int> code;
    Until([&] { return (code = program_->Ended()).has_value(); });
    return code;
  }

  TempFolder home_;
  std::optional<Running> screen_, program_;
};

TEST_F(WindowProgram, LearnsAPressFromOutsideIntoAFirstInstall) {
  const std::string press = home_.Write("press.mode2", [] {
    std::string text = "pulse 9000\nspace 4500\n";
    for (int digit = 0; digit < 32; ++digit) {
      text += "pulse 560\nspace " + std::to_string(digit % 3 == 0 ? 1690 : 560) + "\n";
    }
    return text + "pulse 560\n";
  }());
  Start({"--hold", "0", "--replay", press, press});
  ASSERT_TRUE(Focus("Orlo's Keplo"));
  EXPECT_NE(ConfigFile().find("[END]"), std::string::npos) << "an empty folder gets a first install";

  Keys("Tab space");  // Record, which comes behind Send
  Keys("space");      // once more: only a code that came twice is trusted
  // Save stands twelve places behind Record.
  for (int place = 0; place < 12; ++place) Keys("Tab");
  Keys("space");
  ASSERT_TRUE(Focus("Input new command name"));
  Type("FROM_OUTSIDE");
  Keys("Return");
  EXPECT_TRUE(Until([&] { return ConfigFile().find(",FROM_OUTSIDE\r\n") != std::string::npos; }));
  EXPECT_NE(ConfigFile().find("G10010010010010010010010010010010,FROM_OUTSIDE"), std::string::npos);

  ASSERT_TRUE(Focus("Orlo's Keplo"));
  Keys("alt+f x");
  EXPECT_EQ(WaitForEnd(), 0);
}

TEST_F(WindowProgram, TellsWhichRecordingCannotBeReadAndEnds) {
  Start({"--replay", "/nowhere/press.mode2"});
  ASSERT_TRUE(Focus("Keplo"));
  Keys("Return");
  EXPECT_EQ(WaitForEnd(), 1);
}

}  // namespace
}  // namespace keplo::tests
