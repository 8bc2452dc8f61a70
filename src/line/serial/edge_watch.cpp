#include "line/serial/edge_watch.h"

#include <linux/serial.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "line/real_time.h"

namespace keplo {

namespace {

using std::chrono::nanoseconds;

constexpr std::chrono::milliseconds kStopAgain{5};
/// An edge that the driver reports this soon after the owner read the port may be a result of that read.
constexpr std::chrono::microseconds kOwnLook{500};
/// Marks of remotes are shorter; a driver that polls does so every 4 ms at best.
constexpr std::chrono::microseconds kPrompt{2500};

/// A new thread takes over the signal mask; all signals but that of an interruption stay with the program's
/// own threads.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t blocked;
    sigfillset(&blocked);
    sigdelset(&blocked, InterruptingSignal());
    pthread_sigmask(SIG_SETMASK, &blocked, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

bool ReadLevel(DeviceCalls& calls, int descriptor, bool& level) {
  int lines = 0;
  if (calls.Ioctl(descriptor, TIOCMGET, &lines) != 0) return false;
  level = (lines & TIOCM_CD) != 0;
  return true;
}

bool CountEdges(DeviceCalls& calls, int descriptor, std::uint32_t& count) {
  serial_icounter_struct counters{};
  if (calls.Ioctl(descriptor, TIOCGICOUNT, &counters) != 0) return false;
  count = static_cast<std::uint32_t>(counters.dcd);
  return true;
}

}  // namespace

EdgeWatch::EdgeWatch(DeviceCalls& calls, int descriptor, EdgeLog& log)
    : calls_(calls), descriptor_(descriptor), log_(log), stop_(calls, eventfd(0, EFD_CLOEXEC)) {
  const SignalsBlocked blocked;
  edges_ = std::thread([this] { WaitForEdges(); });
  hangup_ = std::thread([this] { WaitForHangup(); });
}

EdgeWatch::~EdgeWatch() {
  stopping_ = true;
  const std::uint64_t one = 1;
  calls_.Write(stop_.Get(), &one, sizeof one);
  // Nothing but an edge or a signal ends the wait, and the signal may come just before the wait begins.
  while (!edgesEnded_) {
    calls_.Interrupt(edges_.native_handle());
    std::this_thread::sleep_for(kStopAgain);
  }
  edges_.join();
  hangup_.join();
}

void EdgeWatch::Look() {
  if (!edgesEnded_) calls_.Interrupt(edges_.native_handle());
}

/// Learns from a change how the driver reports edges.
/// @param woken whether the wait has ended by it
void EdgeWatch::Judge(nanoseconds at, bool woken) {
  if (!woken) {
    ++untold_;
  } else if (!looking_ && at - looked_.load() >= kOwnLook) {
    prompt_ = prompt_ || at - std::exchange(toldAt_, at) < kPrompt;
    told_ = true;
  }
}

/// Writes down what has changed since the last look.
/// @param timed whether the first edge was told as it came
/// @return how many edges there were; none if the driver does not answer
std::optional<std::uint32_t> EdgeWatch::TakeUp(nanoseconds at, bool timed) {
  std::uint32_t count = 0;
  std::uint32_t again = 0;
  bool level = false;
  // The level belongs to the count only if no edge came between the two calls.
  do {
    if (!CountEdges(calls_, descriptor_, count) || !ReadLevel(calls_, descriptor_, level) ||
        !CountEdges(calls_, descriptor_, again)) {
      return std::nullopt;
    }
  } while (count != again && !stopping_);
  const std::uint32_t edges = count - std::exchange(counted_, count);
  const bool changed = std::exchange(level_, level) != level;
  if (edges == 0) return edges;
  const bool twice = edges % 2 == 0;  // the level is as before, and was the other one in between
  if (twice == changed) ++lost_;
  if (twice) log_.Add({at, !level}, 0);
  // Of several edges the time of one is known, and not even that for sure.
  log_.Add({twice ? calls_.Now() : at, level}, edges - (timed ? 1 : 0));
  return edges;
}

void EdgeWatch::WaitForEdges() {
  HurryThread();
  bool telling = CountEdges(calls_, descriptor_, counted_) && ReadLevel(calls_, descriptor_, level_);
  while (telling && !stopping_) {
    const bool woken = calls_.Ioctl(descriptor_, TIOCMIWAIT, reinterpret_cast<void*>(TIOCM_CD)) == 0;
    if (!woken && errno != EINTR) break;
    // An edge between this look and the next wait would be reported only together with the one after it.
    std::optional<std::uint32_t> edges;
    do {
      const nanoseconds at = calls_.Now();
      const bool first = !edges;
      edges = TakeUp(at, woken || !first || !told_);
      if (first && edges.value_or(0) > 0) Judge(at, woken);
    } while (edges.value_or(0) > 0 && !stopping_);
    telling = edges.has_value();
  }
  if (!stopping_) log_.End();
  edgesEnded_ = true;
}

void EdgeWatch::WaitForHangup() {
  // TIOCMIWAIT of the serial core sleeps through a port that is taken away; poll does not.
  pollfd waits[] = {{descriptor_, 0, 0}, {stop_.Get(), POLLIN, 0}};
  while (!stopping_) {
    if (calls_.Poll(waits, 2, -1) < 0 && errno != EINTR) return;
    if ((waits[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
      log_.End();
      return;
    }
  }
}

}  // namespace keplo
