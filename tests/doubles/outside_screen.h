#pragma once

#include <unistd.h>

#include <QProcess>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include "doubles/expect.h"
#include "doubles/until.h"

namespace keplo::tests {

/// A program that runs beside the test.
class Running {
 public:
  explicit Running(const Texts& words) {
    QStringList arguments;
    for (const std::string& word : words) arguments << QString::fromStdString(word);
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(arguments.takeFirst(), arguments);
  }
  ~Running() {
    process_.terminate();
    process_.waitForFinished(-1);
  }

  /// Waits until it has written to its standard output.
  bool Tells() { return process_.waitForReadyRead(120'000); }
  /// @return the exit code; none if it goes on running, or was ended by a signal
  std::optional<int> WaitForEnd() {
    const bool ended = process_.waitForFinished(120'000) && process_.exitStatus() == QProcess::NormalExit;
    return ended ? std::optional(process_.exitCode()) : std::nullopt;
  }

 private:
  QProcess process_;
};

/// A separate X screen without a window manager, on which a test does what a user would: it types and
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
    // Looking at the display instead may show one that another server has.
    if (!server_.Tells()) throw std::runtime_error("Xvfb does not start on display " + display_);
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
  Running server_{{"Xvfb", display_, "-displayfd", "1", "-screen", "0", "1280x800x24", "-noreset"}};
};

}  // namespace keplo::tests
