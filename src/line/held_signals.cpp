#include "line/held_signals.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "program/stop_signals.h"

namespace keplo {

namespace {

constexpr std::array kEndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

}  // namespace

HeldSignals::HeldSignals(Kinds kinds) {
  sigemptyset(&held_);
  if (kinds == Kinds::EndingAndStopping) sigaddset(&held_, SIGTSTP);
  for (const int signal : kEndingSignals) sigaddset(&held_, signal);
  pthread_sigmask(SIG_BLOCK, &held_, &before_);
}

HeldSignals::~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

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
