#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "doubles/expect.h"
#include "doubles/until.h"

namespace keplo::tests {

/// A program that runs beside the test.
class Running {
 public:
  explicit Running(Texts words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (posix_spawnp(&process_, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
      process_ = -1;
  }
  ~Running() {
    if (process_ > 0 && kill(process_, SIGTERM) == 0) waitpid(process_, nullptr, 0);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  /// @return the exit code; none if it goes on running, or was ended by a signal
  std::optional<int> WaitForEnd() {
    int status = 0;
    const bool ended = Until([&] { return process_ <= 0 || waitpid(process_, &status, WNOHANG) != 0; });
    if (ended) process_ = -1;
    return ended && WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
  }

 private:
  pid_t process_ = -1;
};

/// An X screen of its own without a window manager, on which a test does what a user would: it types and
/// looks for windows, and knows nothing of what the programs are made of.
class OutsideScreen {
 public:
  /// The missing one of the programs that this needs; empty if all are there.
  static std::string Missing() {
    for (const char* program : {"Xvfb", "xdotool"}) {
      if (std::system((std::string("command -v ") + program + " >/dev/null").c_str()) != 0) return program;
    }
    return {};
  }

  OutsideScreen() {
    std::array<int, 2> told{};
    if (pipe(told.data()) != 0) throw std::runtime_error("no pipe for the number of the display");
    fcntl(told[0], F_SETFD, FD_CLOEXEC);
    server_.emplace(Texts{"Xvfb", display_, "-displayfd", std::to_string(told[1]), "-screen", "0",
                          "1280x800x24", "-noreset"});
    close(told[1]);
    // The server tells its number, a line, once it can be used.
    char last = 0;
    while (last != '\n' && read(told[0], &last, 1) == 1) continue;
    close(told[0]);
    if (last != '\n') throw std::runtime_error("Xvfb does not start on display " + display_);
  }

  const std::string& Display() const { return display_; }

  /// The command line of a program that is to show its windows here.
  Texts Here(const Texts& program) const {
    Texts words = {"env", "DISPLAY=" + display_, "QT_QPA_PLATFORM=xcb", "QT_SCALE_FACTOR=1"};
    words.insert(words.end(), program.begin(), program.end());
    return words;
  }

  /// Waits for a window by a pattern of its title and gives it the keyboard.
  /// @return its number; empty if it does not come
  std::string Focus(const std::string& title) const {
    std::string window;
    const bool found = Until([&] {
      window = FirstLine(Windows(title));
      if (!window.empty()) Do("windowfocus " + window);
      return !window.empty() && Focused() == window;
    });
    return found ? window : std::string();
  }
  std::string Focused() const { return FirstLine(Do("getwindowfocus")); }
  /// The windows whose title fits a pattern, a line each.
  std::string Windows(const std::string& title) const {
    return Do("search --onlyvisible --name '" + title + "'");
  }

  void Keys(const std::string& keys) const { Do("key " + keys); }
  void Type(const std::string& text) const { Do("type '" + text + "'"); }

 private:
  static constexpr int kFirstDisplay = 1000, kDisplays = 50000;

  static std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

  /// @return what xdotool writes
  std::string Do(const std::string& command) const {
    FILE* output = popen(("DISPLAY=" + display_ + " xdotool " + command + " 2>/dev/null").c_str(), "r");
    std::string text;
    for (int letter = fgetc(output); letter != EOF; letter = fgetc(output)) text += static_cast<char>(letter);
    pclose(output);
    return text;
  }

  // Of this process alone: servers that look for a free number themselves take each other's away.
  const std::string display_ = ":" + std::to_string(kFirstDisplay + getpid() % kDisplays);
  std::optional<Running> server_;
};

}  // namespace keplo::tests
