#include "line/serial/held_signals.h"

#include <array>

namespace keplo {

namespace {

constexpr std::array kEndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

}  // namespace

HeldSignals::HeldSignals() {
  sigemptyset(&held_);
  for (const int signal : kEndingSignals) sigaddset(&held_, signal);
  pthread_sigmask(SIG_BLOCK, &held_, &before_);
}

HeldSignals::~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

bool HeldSignals::Pending() const {
  sigset_t pending;
  sigpending(&pending);
  for (const int signal : kEndingSignals) {
    if (sigismember(&pending, signal) == 1) return true;
  }
  return false;
}

}  // namespace keplo
