#pragma once

#include <linux/serial.h>

#include <algorithm>
#include <atomic>
#include <semaphore>
#include <set>
#include <thread>

#include "simulated_port.h"

namespace keplo::tests {

/// A serial port whose driver tells edges. Its clock stands while the thread that was told writes them down,
/// so that a play comes out alike on every machine. For one opening.
class TellingPort : public SimulatedPort {
 public:
  using Time = std::chrono::nanoseconds;

  /// Light from now on.
  /// @param telling how the edges are told, one character each: ~ late, = twice, ! not at all, ? nor counted;
  ///        any other at once
  void Play(const PulseTrain& press, const std::string& telling) {
    SimulatedPort::Play(press);
    Time at = start_;
    for (std::size_t i = 0; i < telling.size(); at += std::chrono::microseconds(press[i++])) {
      if (i == press.size() && i % 2 == 0) break;  // a space at the end has no edge behind it
      if (telling[i] != '?') counted_.push_back(at);
      if (telling[i] == '=') told_.insert(at + std::chrono::microseconds(200));
      if (telling[i] == '~') told_.insert(at + std::chrono::milliseconds(3));
      if (telling[i] != '?' && telling[i] != '!' && telling[i] != '~') told_.insert(at + kTold);
    }
  }

  int Ioctl(int descriptor, unsigned long request, void* argument) override {
    if (request == TIOCMIWAIT) {
      asleep_.release();
      woken_.acquire();
      return isTold_ ? 0 : (errno = EINTR, -1);
    }
    Advance(now_);
    const int result = SimulatedPort::Ioctl(descriptor, request, argument);
    if (request == TCSETS) isMuted_ = isWatched_;
    if (request != TIOCGICOUNT || !IsThere()) return result;
    if (IsOwner()) begins_ = isWatched_ = true;
    static_cast<serial_icounter_struct*>(argument)->dcd = static_cast<int>(
        std::count_if(counted_.begin(), counted_.end(), [&](Time at) { return at <= now_; }));
    return 0;
  }
  ssize_t Read(int descriptor, void* data, std::size_t size) override {
    if (descriptor != kDescriptor) news_ = false;
    return descriptor == kDescriptor ? SimulatedPort::Read(descriptor, data, size) : 0;
  }
  ssize_t Write(int descriptor, const void* data, std::size_t size) override {
    if (IsOwner() && descriptor == stopDescriptor_) {
      isStopping_ = true;
      isWatched_ = false;
      gone_.release();
    } else if (!IsOwner()) {
      news_ = true;
      if (!IsThere()) ended_.release();
    }
    return SimulatedPort::Write(descriptor, data, size);
  }
  int Poll(pollfd* descriptors, nfds_t count, int timeout) override {
    if (timeout < 0) {
      stopDescriptor_ = descriptors[1].fd;
      asleep_.release();
      gone_.acquire();
      descriptors[0].revents = isStopping_ ? 0 : POLLHUP;
      return 1;
    }
    Advance(now_);
    if (descriptors->fd == kDescriptor) return SimulatedPort::Poll(descriptors, count, timeout);
    const Time until = now_ + std::chrono::milliseconds(timeout);
    while (!news_ && now_ < until) Advance(told_.empty() ? until : std::min(until, *told_.begin()));
    return news_ ? 1 : 0;
  }
  Time Now() override {
    Advance(now_);
    return SimulatedPort::Now();
  }
  void SleepUntil(Time time) override {
    Advance(time);
    SimulatedPort::SleepUntil(time);
  }
  void Interrupt(pthread_t /*thread*/) override { Wake(false); }

 private:
  static constexpr std::chrono::microseconds kTold{20};

  bool IsOwner() const { return std::this_thread::get_id() == owner_; }
  void Wake(bool told) {
    isTold_ = told;
    isMuted_ = false;
    woken_.release();
    if (!isWatched_) return;  // whoever was woken does not wait again
    asleep_.acquire();
    told_.erase(told_.begin(), told_.upper_bound(now_));  // it did not wait then
  }
  /// Lets the time pass for the owner of the line, and tells what there is to tell on the way.
  void Advance(Time until) {
    if (!IsOwner()) return;
    for (; begins_ && threads_ < 2; ++threads_) asleep_.acquire();
    while (isWatched_ && !told_.empty() && *told_.begin() <= until && *told_.begin() < GoneAt) {
      now_ = std::max(now_, *told_.begin());
      if (!isMuted_) {
        Wake(true);
      } else {
        told_.erase(told_.begin());
      }
    }
    now_ = std::max(now_, until);
    if (IsThere() || !std::exchange(isWatched_, false)) return;
    gone_.release();
    ended_.acquire();
  }

  const std::thread::id owner_ = std::this_thread::get_id();
  std::vector<Time> counted_;
  std::set<Time> told_;
  std::counting_semaphore<> asleep_{0}, woken_{0}, gone_{0}, ended_{0};
  int threads_ = 0;  // of a watch, that have begun to wait
  int stopDescriptor_ = -1;
  bool begins_ = false, isWatched_ = false, isStopping_ = false, news_ = false;
  bool isMuted_ = false;              // by new settings, until the next wait begins
  std::atomic<bool> isTold_ = false;  // a watch that stops is interrupted again and again
};

}  // namespace keplo::tests
