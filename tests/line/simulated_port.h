#pragma once

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "formats/pulse_text.h"
#include "line/device_calls.h"

namespace keplo::tests {

/// A device of this process alone, as the lock of a port is a file for the whole system.
inline const std::string kSimulatedDevice = "/dev/ttySimulated" + std::to_string(getpid());

/// A serial port whose driver tells no edges, on a clock that moves only when somebody waits or calls.
class SimulatedPort : public DeviceCalls {
 public:
  static constexpr int kDescriptor = 1'000'000;  // none that is open
  static constexpr std::chrono::microseconds kCall{2};

  bool There = true;
  std::chrono::nanoseconds GoneAt = std::chrono::nanoseconds::max();
  bool RestLevel = true;
  /// Every so many calls of the clock a wake-up comes late by this.
  int LateEvery = 0;
  int Interrupts = 0;  // of writes, before one goes through
  std::chrono::microseconds Late{0};

  std::vector<std::pair<std::chrono::nanoseconds, bool>> Dtr;  // changes
  std::vector<std::pair<std::chrono::nanoseconds, std::string>> Written;
  std::deque<std::pair<std::chrono::milliseconds, char>> Answers;  // after the question before, and what
  bool Break = false, Rts = false, Exclusive = false;
  termios Settings{};

  /// Light from now on.
  void Play(const PulseTrain& press) {
    edges_.clear();
    auto at = now_;
    for (const int length : press) edges_.push_back(at += std::chrono::microseconds(length));
    start_ = now_;
  }

  int Open(const std::string& /*path*/, int /*flags*/) override {
    if (IsThere()) return kDescriptor;
    errno = ENOENT;
    return -1;
  }
  void Close(int /*descriptor*/) override {}
  int Ioctl(int /*descriptor*/, unsigned long request, void* argument) override {
    now_ += kCall;
    errno = IsThere() ? ENOTTY : EIO;
    if (!IsThere() || request == TIOCGICOUNT) return -1;
    if (request == TIOCMGET) *static_cast<int*>(argument) = Lit() != RestLevel ? TIOCM_CD : 0;
    if ((request == TIOCMBIS || request == TIOCMBIC) && *static_cast<int*>(argument) == TIOCM_DTR) {
      Dtr.emplace_back(now_, request == TIOCMBIS);
    }
    if ((request == TIOCMBIS || request == TIOCMBIC) && *static_cast<int*>(argument) == TIOCM_RTS) {
      Rts = request == TIOCMBIS;
    }
    if (request == TIOCSBRK || request == TIOCCBRK) Break = request == TIOCSBRK;
    if (request == TCFLSH) arrived_.clear();
    if (request == TCGETS) *static_cast<termios*>(argument) = Settings;
    if (request == TCSETS) Settings = *static_cast<termios*>(argument);
    if (request == TIOCEXCL || request == TIOCNXCL) Exclusive = request == TIOCEXCL;
    return 0;
  }
  ssize_t Read(int /*descriptor*/, void* data, std::size_t /*size*/) override {
    if (arrived_.empty() || arrived_.front().first > now_) return errno = EAGAIN, -1;
    *static_cast<char*>(data) = arrived_.front().second;
    arrived_.pop_front();
    return 1;
  }
  ssize_t Write(int descriptor, const void* data, std::size_t size) override {
    if (descriptor != kDescriptor) return static_cast<ssize_t>(size);
    if (!IsThere()) return errno = EIO, -1;
    if (Interrupts > 0) return errno = --Interrupts > 0 ? EINTR : EAGAIN, -1;
    Written.emplace_back(now_, std::string(static_cast<const char*>(data), size));
    if (!Answers.empty()) {
      arrived_.emplace_back(now_ + Answers.front().first, Answers.front().second);
      Answers.pop_front();
    }
    return static_cast<ssize_t>(size);
  }
  ssize_t WriteUntil(int descriptor, const void* data, std::size_t size, std::chrono::nanoseconds) override {
    return Write(descriptor, data, size);
  }
  int Poll(pollfd* descriptors, nfds_t /*count*/, int timeout) override {
    const auto until = now_ + std::chrono::milliseconds(timeout);
    if (until >= GoneAt || !There) {
      now_ = std::max(now_, std::min(GoneAt, until));
      descriptors->revents = POLLHUP | POLLERR;
      return 1;
    }
    if (descriptors->events == POLLOUT) return 1;
    const bool comes = !arrived_.empty() && arrived_.front().first <= until;
    now_ = comes ? std::max(now_, arrived_.front().first) : until;
    return comes ? 1 : 0;
  }
  std::chrono::nanoseconds Now() override { return now_; }
  void SleepUntil(std::chrono::nanoseconds time) override {
    now_ = std::max(now_, time);
    if (LateEvery > 0 && ++sleeps_ % LateEvery == 0) now_ += Late;
  }
  void Interrupt(pthread_t /*thread*/) override {}

 protected:
  bool IsThere() const { return There && now_ < GoneAt; }
  bool Lit() const {
    std::size_t passed = 0;
    while (passed < edges_.size() && edges_[passed] <= now_) ++passed;
    return passed < edges_.size() && now_ >= start_ && passed % 2 == 0;
  }

  std::chrono::nanoseconds now_{std::chrono::hours(1)}, start_{0};
  std::vector<std::chrono::nanoseconds> edges_;
  std::deque<std::pair<std::chrono::nanoseconds, char>> arrived_;
  int sleeps_ = 0;
};

}  // namespace keplo::tests
