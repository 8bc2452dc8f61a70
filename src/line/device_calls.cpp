#include "line/device_calls.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace keplo {

namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

timespec TimespecOf(nanoseconds time) {
  const auto whole = std::chrono::floor<seconds>(time);
  return {static_cast<time_t>(whole.count()), static_cast<long>((time - whole).count())};
}

/// Interrupts at a time what the calling thread waits for in the kernel.
class Interruption {
 public:
  explicit Interruption(nanoseconds time) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(kSignal, &action, nullptr);
    sigevent event{};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = kSignal;
    event._sigev_un._tid = gettid();
    made_ = timer_create(CLOCK_MONOTONIC, &event, &timer_) == 0;
    const itimerspec at = {{}, TimespecOf(time)};
    if (made_) timer_settime(timer_, TIMER_ABSTIME, &at, nullptr);
  }
  ~Interruption() {
    if (made_) timer_delete(timer_);
  }
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  const int kSignal = SIGRTMIN + 4;
  timer_t timer_{};
  bool made_ = false;
};

}  // namespace

int InterruptingSignal() {
  static const int number = [] {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGRTMIN + 3, &action, nullptr);
    return SIGRTMIN + 3;
  }();
  return number;
}

int KernelCalls::Open(const std::string& path, int flags) { return open(path.c_str(), flags); }

void KernelCalls::Close(int descriptor) { close(descriptor); }

int KernelCalls::Ioctl(int descriptor, unsigned long request, void* argument) {
  return ioctl(descriptor, request, argument);
}

ssize_t KernelCalls::Read(int descriptor, void* data, std::size_t size) {
  return read(descriptor, data, size);
}

ssize_t KernelCalls::Write(int descriptor, const void* data, std::size_t size) {
  return write(descriptor, data, size);
}

ssize_t KernelCalls::WriteUntil(int descriptor, const void* data, std::size_t size, nanoseconds time) {
  const Interruption interruption(time);
  return Write(descriptor, data, size);
}

int KernelCalls::Poll(pollfd* descriptors, nfds_t count, int timeout) {
  return poll(descriptors, count, timeout);
}

nanoseconds KernelCalls::Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return seconds(now.tv_sec) + nanoseconds(now.tv_nsec);
}

void KernelCalls::SleepUntil(nanoseconds time) {
  const timespec until = TimespecOf(time);
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

void KernelCalls::Interrupt(pthread_t thread) { pthread_kill(thread, InterruptingSignal()); }

}  // namespace keplo
