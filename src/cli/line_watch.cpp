#include "cli/line_watch.h"

#include <poll.h>
#include <sys/ioctl.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <string_view>
#include <utility>

#include "cli/live_line.h"
#include "cli/open_install.h"
#include "cli/outcome.h"
#include "signal/sample_bits.h"
#include "signal/sample_time.h"

namespace keplo::cli {

namespace {

constexpr std::chrono::milliseconds kPollTime{2};  // between checks of the line
/// Between checks of the other inputs while the line is at rest and can wake the program.
constexpr std::chrono::milliseconds kRestingPollTime{50};

/// Lengths of the runs of a capture, microseconds, beginning with a mark.
std::string LengthsText(const std::string& capture, double sampleTime) {
  const std::string samples =
      SamplesToBits(std::string_view(capture).substr(0, capture.find_last_not_of('\0') + 1));
  std::string text;
  for (std::size_t begin = 0; begin < samples.size();) {
    const std::size_t end = std::min(samples.find_first_not_of(samples[begin], begin), samples.size());
    const bool last = end == samples.size();
    if (!last || samples[begin] == '1') {
      const long length = std::lround(static_cast<double>(end - begin) * sampleTime);
      text += (text.empty() ? "" : " ") + std::to_string(length);
    }
    begin = end;
  }
  return text;
}

std::string LossesText(const LineLosses& before, const LineLosses& now) {
  if (const auto samples = now.Samples - before.Samples; samples > 0) {
    const auto share = [samples](std::uint64_t part) {
      char text[16];
      std::snprintf(text, sizeof text, "%.1f %%",
                    static_cast<double>(part) * 100 / static_cast<double>(samples));
      return std::string(text);
    };
    return "samples late " + share(now.LateSamples - before.LateSamples) + ", missed " +
           share(now.FilledSamples - before.FilledSamples);
  }
  return "edges missed " + std::to_string(now.MissedEdges - before.MissedEdges);
}

/// An input of a serial port other than that of the receiver.
struct ModemLine {
  int Bit;
  std::string_view Name;
};
constexpr std::array kOtherInputs = {ModemLine{TIOCM_CTS, "CTS"}, ModemLine{TIOCM_DSR, "DSR"},
                                     ModemLine{TIOCM_RI, "RI"}};

/// Shows the changes of a line.
class LineWatch {
 public:
  LineWatch(LiveLine& live, const Settings& settings) : live_(live), settings_(settings) {}

  void Check() {
    // A line that never rests is no signal to DCD, which reports it by itself; the level is read from the
    // port.
    const bool signal = live_.Line().DCD() != RestLevel();
    ShowOverflows(live_.Losses().Overflows);
    if (const std::optional<int> lines = live_.Device().ModemLines()) Show(*lines);
    if (signal) Capture();
  }

 private:
  std::int32_t RestLevel() const { return settings_.ReceiverKind == 1 ? 0 : 1; }

  void ShowLevel(std::int32_t level) {
    if (level == level_) return;
    level_ = level;
    std::cout << "carrier detect " << level << (level == RestLevel() ? " (rest)" : "") << std::endl;
  }

  /// Reports presses that are not shown because the device lost part of them.
  void ShowOverflows(std::uint64_t overflows) {
    if (std::exchange(overflows_, overflows) < overflows) {
      std::cout << "press lost: the device could not keep it (" << overflows << " so far)" << std::endl;
    }
  }

  void Show(int lines) {
    ShowLevel((lines & TIOCM_CD) != 0 ? 1 : 0);
    for (const ModemLine& input : kOtherInputs) {
      const bool on = (lines & input.Bit) != 0;
      // Initially all are assumed to be off, which is the state if nothing is connected.
      if (on != ((lines_ & input.Bit) != 0)) std::cout << input.Name << (on ? " 1" : " 0") << std::endl;
    }
    lines_ = lines;
  }

  void Capture() {
    std::string capture(kMonitorCaptureBytes, '\0');
    const LineLosses before = live_.Losses();
    if (settings_.ReceiverKind == 1) {
      live_.Line().IRMonitorN(capture, settings_.ProcDelay);
    } else {
      live_.Line().IRMonitor(capture, settings_.ProcDelay);
    }
    const std::string lengths = LengthsText(capture, SampleTimeOf(settings_.ProcDelay));
    if (lengths.find(' ') == std::string::npos) return;
    std::cout << "press: " << lengths << " us; " << LossesText(before, live_.Losses()) << std::endl;
  }

  LiveLine& live_;
  const Settings& settings_;
  std::int32_t level_ = -1;
  int lines_ = 0;
  std::uint64_t overflows_ = 0;
};

}  // namespace

int WatchLine(const std::string& appPathOption, std::int32_t port) {
  OpenedConfig config(appPathOption);
  LiveLine live(config.Mod, port);
  Tell("watching " + live.Name() + "; Ctrl+C ends it");
  LineWatch watch(live, config.Mod.Settings);
  do {
    watch.Check();
    // Waits instead of reading all the time, which would interfere with some devices' detection of edges.
    const bool rests = live.Device().MayRest() > kPollTime;
    pollfd wake = {live.Device().WakeDescriptor(), POLLIN, 0};
    poll(&wake, 1, static_cast<int>((rests ? kRestingPollTime : kPollTime).count()));
  } while (!live.TakeStop());
  return kDone;
}

}  // namespace keplo::cli
