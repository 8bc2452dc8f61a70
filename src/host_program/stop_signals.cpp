#include "host_program/stop_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace keplo::host {

StopSignals::StopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

StopSignals::~StopSignals() {
  notifier_.reset();
  close(descriptor_);
}

void StopSignals::Watch(std::function<void()> stop) {
  notifier_.reset();
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this, stop = std::move(stop)] {
                     signalfd_siginfo signal{};
                     if (read(descriptor_, &signal, sizeof signal) == sizeof signal) stop();
                   });
}

}  // namespace keplo::host
