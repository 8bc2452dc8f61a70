#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "doubles/temp_folder.h"

namespace keplo::tests {

using Words = std::vector<std::string>;

/// Looks again and again until something holds.
/// @return false if it does not within half a minute
inline bool Until(const std::function<bool()>& holds) {
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
  explicit Running(Words words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
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

  std::optional<int> WaitForEnd() {
    std::optional<int> code;
    Until([&] { return (code = Ended()).has_value(); });
    return code;
  }

 private:
  pid_t process_ = -1;
};

/// A part of a screen, pixels.
struct ScreenPart {
  int X = 0, Y = 0, Width = 0, Height = 0;
  bool operator==(const ScreenPart&) const = default;
};

/// The pixels of a part of a screen, row by row, as 0xRRGGBB.
using Picture = std::vector<std::uint32_t>;

/// An X screen of its own without a window manager, on which a test does and sees what a user would: it
/// types, clicks and looks at pixels, and knows nothing of what the programs are made of.
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
    server_.emplace(Words{"Xvfb", display_, "-displayfd", std::to_string(told[1]), "-screen", "0",
                          "1280x800x24", "-noreset", "-fbdir", frame_.Path().string()});
    close(told[1]);
    // The server tells its number, a line, once it can be used.
    char last = 0;
    bool ready = false;
    while (!ready && read(told[0], &last, 1) == 1) ready = last == '\n';
    close(told[0]);
    if (!ready) throw std::runtime_error("Xvfb does not start on display " + display_);
  }

  const std::string& Display() const { return display_; }

  /// The command line of a program that is to show its windows here.
  Words Here(const Words& program) const {
    Words words = {"env", "DISPLAY=" + display_, "QT_QPA_PLATFORM=xcb", "QT_SCALE_FACTOR=1"};
    words.insert(words.end(), program.begin(), program.end());
    return words;
  }

  /// Waits for a window by a pattern of its title and gives it the keyboard.
  /// @return its number; empty if it does not come
  std::string Focus(const std::string& title) const {
    std::string window;
    const bool found = Until([&] {
      window = FirstLine(Do("search --onlyvisible --name '" + title + "'"));
      return !window.empty() && FocusOn(window);
    });
    return found ? window : std::string();
  }
  bool FocusOn(const std::string& window) const {
    Do("windowfocus " + window);
    return FirstLine(Do("getwindowfocus")) == window;
  }
  /// The windows whose title fits a pattern, a line each.
  std::string Windows(const std::string& title) const {
    return Do("search --onlyvisible --name '" + title + "'");
  }

  /// Where a window lies; all 0 if it is gone.
  ScreenPart PartOf(const std::string& window) const {
    std::istringstream lines(Do("getwindowgeometry --shell " + window));
    std::map<std::string, int> values;
    for (std::string line; std::getline(lines, line);) {
      const std::size_t equals = line.find('=');
      if (equals != std::string::npos) values[line.substr(0, equals)] = std::atoi(line.c_str() + equals + 1);
    }
    return {values["X"], values["Y"], values["WIDTH"], values["HEIGHT"]};
  }

  void Keys(const std::string& keys) const { Do("key " + keys); }
  void Type(const std::string& text) const { Do("type '" + text + "'"); }
  /// Presses the left button of the mouse in the middle of a part.
  void Click(const ScreenPart& part) const {
    Do("mousemove " + std::to_string(part.X + part.Width / 2) + " " +
       std::to_string(part.Y + part.Height / 2) + " click 1");
  }

  Picture Look(const ScreenPart& part) const {
    std::ifstream frame(frame_.Path() / "Xvfb_screen0", std::ios::binary);
    const std::streamoff pixels = Word(frame, kHeaderSize) + kColourBytes * Word(frame, kColours);
    const std::streamoff row = Word(frame, kBytesPerLine);
    Picture seen(static_cast<std::size_t>(part.Width) * part.Height);
    for (int y = 0; y < part.Height; ++y) {
      frame.seekg(pixels + (part.Y + y) * row + part.X * kPixelBytes);
      frame.read(reinterpret_cast<char*>(&seen[static_cast<std::size_t>(y) * part.Width]),
                 part.Width * kPixelBytes);
    }
    for (std::uint32_t& pixel : seen) pixel &= 0xFFFFFF;
    return seen;
  }

  /// Looks until a picture fits and has come to rest.
  /// @return empty if none does
  Picture LookUntil(const ScreenPart& part, const std::function<bool(const Picture&)>& fits) const {
    Picture seen;
    int same = 0;
    const bool rests = Until([&] {
      Picture now = Look(part);
      same = now == seen ? same + 1 : 0;
      seen = std::move(now);
      return same >= kLooksAtRest && fits(seen);
    });
    return rests ? seen : Picture();
  }

 private:
  // Fields of the file that the screen is kept in, an XWD one: big-endian words, offsets in bytes.
  static constexpr int kHeaderSize = 0, kBytesPerLine = 48, kColours = 76;
  static constexpr std::uint32_t kColourBytes = 12;  // of one entry of the colour map
  static constexpr std::streamoff kPixelBytes = 4;
  static constexpr int kLooksAtRest = 5;  // a picture may be half drawn

  static constexpr int kFirstDisplay = 1000, kDisplays = 50000;

  static std::uint32_t Word(std::ifstream& file, int offset) {
    std::array<unsigned char, 4> bytes{};
    file.seekg(offset);
    file.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
    return bytes[0] << 24U | bytes[1] << 16U | bytes[2] << 8U | bytes[3];
  }

  static std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

  /// @return what xdotool writes
  std::string Do(const std::string& command) const {
    FILE* output = popen(("DISPLAY=" + display_ + " xdotool " + command + " 2>/dev/null").c_str(), "r");
    std::string text;
    std::array<char, 256> part{};
    while (const std::size_t length = fread(part.data(), 1, part.size(), output))
      text.append(part.data(), length);
    pclose(output);
    return text;
  }

  TempFolder frame_;
  // Of this process alone: servers that look for a free number themselves take each other's away.
  const std::string display_ = ":" + std::to_string(kFirstDisplay + getpid() % kDisplays);
  std::optional<Running> server_;
};

}  // namespace keplo::tests
