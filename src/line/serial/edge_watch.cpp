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

constexpr std::chrono::milliseconds kStopAgain{5};

/// A signal that does nothing but end a wait of the kernel.
int WakingSignal() {
  static const int number = [] {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGRTMIN + 3, &action, nullptr);
    return SIGRTMIN + 3;
  }();
  return number;
}

/// A new thread takes over the signal mask; all signals but the waking one stay with the program's own
/// threads.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t blocked;
    sigfillset(&blocked);
    sigdelset(&blocked, WakingSignal());
    pthread_sigmask(SIG_SETMASK, &blocked, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

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
    pthread_kill(edges_.native_handle(), WakingSignal());
    std::this_thread::sleep_for(kStopAgain);
  }
  edges_.join();
  hangup_.join();
}

void EdgeWatch::Look() {
  if (!edgesEnded_) pthread_kill(edges_.native_handle(), WakingSignal());
}

/// Writes down what has changed since the last look.
/// @param woken whether the driver told of it, at that time
/// @return how many edges there were; none if the driver does not answer
std::optional<std::uint32_t> EdgeWatch::TakeUp(std::chrono::nanoseconds at, bool woken) {
  std::uint32_t count = 0;
  std::uint32_t again = 0;
  int lines = 0;
  // The level belongs to the count only if no edge came between the two calls.
  do {
    if (!CountEdges(calls_, descriptor_, count) || calls_.Ioctl(descriptor_, TIOCMGET, &lines) != 0 ||
        !CountEdges(calls_, descriptor_, again)) {
      return std::nullopt;
    }
  } while (count != again && !stopping_);
  const std::uint32_t edges = count - std::exchange(counted_, count);
  if (edges == 0) return edges;
  ++(woken ? told_ : untold_);
  const bool level = (lines & TIOCM_CD) != 0;
  const bool twice = edges % 2 == 0;  // it is as it was, so it was the other way in between
  if (twice) log_.Add({at, !level}, 0);
  log_.Add({twice ? calls_.Now() : at, level}, edges - (twice ? 2 : 1));
  return edges;
}

void EdgeWatch::WaitForEdges() {
  HurryThread();
  bool telling = CountEdges(calls_, descriptor_, counted_);
  while (telling && !stopping_) {
    const bool woken = calls_.Ioctl(descriptor_, TIOCMIWAIT, reinterpret_cast<void*>(TIOCM_CD)) == 0;
    if (!woken && errno != EINTR) break;
    // An edge that falls between the look and the next wait would be told with the one after it only.
    std::optional<std::uint32_t> edges;
    do {
      edges = TakeUp(calls_.Now(), woken);
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
