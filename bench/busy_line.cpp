// Prints how many key presses a serial line reads on a machine that has other things to do, as the rows of
// docs/busy-machine.md: a receiver that exists as times alone is played against the clock of the machine,
// once behind a driver that tells edges and once behind one that has to be sampled.
//   busy_line RECORDING...
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <span>
#include <vector>

#include "formats/recording.h"
#include "line/press_capture.h"
#include "line/real_time.h"
#include "line/serial/serial_line.h"
#include "signal/monitored_press.h"
#include "signal/sample_bits.h"

namespace {

using namespace keplo;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr std::int32_t kDelay = 10;  // samples of 55 us
constexpr Analysis kReader = Analysis::Second;
constexpr milliseconds kTick{2};
constexpr milliseconds kPause{300};  // between two presses

/// A port with a receiver that rests at 1. Its threads are those of the line, and so is the clock.
class PlayedPort : public KernelCalls {
 public:
  explicit PlayedPort(bool tellsEdges) : tellsEdges_(tellsEdges) {}

  /// @return when the press is over
  nanoseconds Play(const PulseTrain& press, nanoseconds start) {
    const std::lock_guard lock(mutex_);
    before_ += edges_.size();
    edges_.clear();
    for (const int length : press) {
      edges_.push_back(start);
      start += std::chrono::microseconds(length);
    }
    if (edges_.size() % 2 == 1) edges_.push_back(start);
    return start;
  }

  int Open(const std::string& /*path*/, int /*flags*/) override {
    return open("/dev/null", O_RDWR | O_CLOEXEC);
  }
  int Ioctl(int /*descriptor*/, unsigned long request, void* argument) override {
    const std::size_t passed = Passed(Now());
    if (request == TIOCMGET) *static_cast<int*>(argument) = passed % 2 == 0 ? TIOCM_CD : 0;
    if (request == TIOCGICOUNT && !tellsEdges_) return errno = ENOTTY, -1;
    if (request == TIOCGICOUNT) {
      static_cast<serial_icounter_struct*>(argument)->dcd = static_cast<int>(passed);
    }
    return request == TIOCMIWAIT ? WaitForEdge(passed) : 0;
  }

 private:
  std::size_t Passed(nanoseconds time) {
    const std::lock_guard lock(mutex_);
    return before_ +
           static_cast<std::size_t>(std::upper_bound(edges_.begin(), edges_.end(), time) - edges_.begin());
  }
  nanoseconds Next(nanoseconds time) {
    const std::lock_guard lock(mutex_);
    const auto next = std::upper_bound(edges_.begin(), edges_.end(), time);
    const nanoseconds look = time + kPause / 2;  // something else may be played then
    return next == edges_.end() ? look : std::min(*next, look);
  }
  int WaitForEdge(std::size_t seen) {
    while (Passed(Now()) == seen) {
      const nanoseconds next = Next(Now());
      const timespec until = {static_cast<time_t>(next.count() / 1'000'000'000),
                              static_cast<long>(next.count() % 1'000'000'000)};
      if (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) return errno = EINTR, -1;
    }
    return 0;
  }

  const bool tellsEdges_;
  std::mutex mutex_;
  std::vector<nanoseconds> edges_;
  std::size_t before_ = 0;  // of the presses before
};

std::string DigitsOf(std::string capture) {
  SignalState state;
  const MonitorReading reading = ReadCapture(capture, state, kReader);
  return reading.Ended == Stage::Code ? reading.Digits : std::string();
}

struct Tally {
  int Presses = 0, Right = 0, Wrong = 0;
};

/// Listens as a monitor does, until a time.
void Listen(SerialLine& line, nanoseconds until, KernelCalls& calls, const std::string& digits,
            Tally& tally) {
  bool right = false;
  bool wrong = false;
  while (calls.Now() < until) {
    pollfd wake = {line.WakeDescriptor(), POLLIN, 0};
    const milliseconds rest = std::min(line.MayRest(), kPause);
    poll(&wake, 1, static_cast<int>(std::max(rest, kTick).count()));
    if (line.DCD() == 1) continue;
    std::string capture(kMonitorCaptureBytes, '\0');
    line.IRMonitor(capture, kDelay);
    const std::string read = DigitsOf(capture);
    right = right || read == digits;
    wrong = wrong || (!read.empty() && read != digits);
  }
  ++tally.Presses;
  tally.Right += right ? 1 : 0;
  tally.Wrong += wrong ? 1 : 0;
}

void PrintRow(bool byEdges, std::span<const PulseTrain> presses) {
  PlayedPort port(byEdges);
  const std::int16_t receiver = 0;
  LineOptions options;
  options.ReadBy = &kReader;
  SerialLine line(port, "a played port", receiver, options, {});
  if (line.OpenCom(1) != 1) return;
  Tally tally;
  for (const PulseTrain& press : presses) {
    const std::string digits = DigitsOf(CaptureOfPress(press, kMonitorCaptureBytes, options));
    if (digits.empty()) continue;
    const PulseTrain onAir = PressOnAir(press, options);
    Listen(line, port.Play(onAir, port.Now() + kPause) + kPause, port, digits, tally);
  }
  const LineLosses losses = line.Losses();
  const auto share = [&](std::uint64_t part) {
    return 100.0 * static_cast<double>(part) /
           static_cast<double>(std::max<std::uint64_t>(losses.Samples, 1));
  };
  const bool realTime = DescribeRealTime().find("with real-time") != std::string::npos;
  std::printf("| %s, %s | ", byEdges ? "by edges" : "sampled", realTime ? "real-time" : "plain");
  if (byEdges) {
    std::printf("%llu edges missed | ", static_cast<unsigned long long>(losses.MissedEdges));
  } else {
    std::printf("%.2f %% late, %.2f %% missed | ", share(losses.LateSamples), share(losses.FilledSamples));
  }
  std::printf("%d of %d | %d |\n", tally.Right, tally.Presses, tally.Wrong);
}

}  // namespace

int main(int count, char** names) {
  std::vector<PulseTrain> presses;
  for (const char* const name : std::span(names, static_cast<std::size_t>(count)).subspan(1)) {
    for (const Press& press : LoadRecording(name).Presses) {
      if (const auto* train = std::get_if<PulseTrain>(&press)) presses.push_back(*train);
    }
  }
  for (const bool byEdges : {false, true}) PrintRow(byEdges, presses);
}
