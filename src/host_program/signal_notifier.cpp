#include "host_program/signal_notifier.h"

#include <fcntl.h>

#include <utility>

#include "disk/descriptor.h"

namespace keplo::host {

namespace {

void MaskHangup(int how) {
  sigset_t hangup;
  sigemptyset(&hangup);
  sigaddset(&hangup, SIGHUP);
  sigprocmask(how, &hangup, nullptr);
}

/// Without SIGHUP, which first of all requests reading the files, and must not interrupt a transmission.
std::vector<int> EndingSignalsOfHost() {
  std::vector<int> numbers = EndingSignals();
  std::erase(numbers, SIGHUP);
  return numbers;
}

/// Whether the process has a terminal.
bool IsInTerminal() { return Descriptor(open("/dev/tty", O_RDONLY | O_NOCTTY | O_CLOEXEC)).IsOpen(); }

}  // namespace

void HoldHangups() { MaskHangup(SIG_BLOCK); }

SignalNotifier::SignalNotifier(std::function<void()> reload)
    : endsWithTerminal_(IsInTerminal() && !IsIgnored(SIGHUP)),
      reload_(std::move(reload)),
      signals_(EndingSignalsOfHost(), {SIGHUP}),
      notifier_(signals_.Descriptor(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { Act(signals_.Take()); });
  MaskHangup(SIG_UNBLOCK);
}

void SignalNotifier::Act(int number) const {
  const bool reload = number == SIGHUP && (!endsWithTerminal_ || IsInTerminal());
  const std::function<void()>& action = reload ? reload_ : stop_;
  if (number != 0 && action) action();
}

}  // namespace keplo::host
