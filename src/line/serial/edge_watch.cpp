#include "line/serial/edge_watch.h"

#include <linux/serial.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <csignal>

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

bool EdgeWatch::Counted(std::uint32_t& count) const {
  serial_icounter_struct counters{};
  if (calls_.Ioctl(descriptor_, TIOCGICOUNT, &counters) != 0) return false;
  count = static_cast<std::uint32_t>(counters.dcd);
  return true;
}

void EdgeWatch::WaitForEdges() {
  HurryThread();
  std::uint32_t before = 0;
  bool telling = Counted(before);
  while (telling && !stopping_) {
    if (calls_.Ioctl(descriptor_, TIOCMIWAIT, reinterpret_cast<void*>(TIOCM_CD)) != 0) {
      telling = errno == EINTR;
      continue;
    }
    const auto at = calls_.Now();
    int lines = 0;
    std::uint32_t count = 0;
    telling = calls_.Ioctl(descriptor_, TIOCMGET, &lines) == 0 && Counted(count);
    if (!telling || count == before) continue;
    log_.Add({at, (lines & TIOCM_CD) != 0}, count - before - 1);
    before = count;
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
