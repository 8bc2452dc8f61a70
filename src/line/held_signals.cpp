#include "line/held_signals.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>

#include "program/stop_signals.h"

namespace keplo {

namespace {

/// The thread that holds back what stops the program; the handler runs without an object.
std::atomic<pthread_t> keeper{};
static_assert(std::atomic<pthread_t>::is_always_lock_free);

/// Another thread that got the signal would stop all of them at once.
void PassOn(int signal) {
  const int before = errno;
  pthread_kill(keeper, signal);
  errno = before;
}

constexpr std::array kEndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

}  // namespace

HeldSignals::HeldSignals(Kinds kinds) {
  sigemptyset(&held_);
  if (kinds == Kinds::EndingAndStopping) sigaddset(&held_, SIGTSTP);
  for (const int signal : kEndingSignals) sigaddset(&held_, signal);
  pthread_sigmask(SIG_BLOCK, &held_, &before_);
  struct sigaction present {};
  sigaction(SIGTSTP, nullptr, &present);
  if (kinds == Kinds::Ending || present.sa_handler != SIG_DFL) return;
  keeper = pthread_self();
  struct sigaction action {};
  action.sa_handler = PassOn;
  action.sa_flags = SA_RESTART;
  sigaction(SIGTSTP, &action, &stop_.emplace());
}

HeldSignals::~HeldSignals() {
  if (stop_) sigaction(SIGTSTP, &*stop_, nullptr);
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool HeldSignals::Pending() {
  sigset_t pending;
  sigpending(&pending);
  return std::any_of(kEndingSignals.begin(), kEndingSignals.end(),
                     [&](int signal) { return sigismember(&pending, signal) == 1 && EndsProgram(signal); });
}

void HeldSignals::Take() const {
  const timespec none{};
  while (sigtimedwait(&held_, nullptr, &none) > 0) {
  }
}

}  // namespace keplo
