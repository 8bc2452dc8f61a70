#include "line/device_calls.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace keplo {

namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

}  // namespace

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

int KernelCalls::Poll(pollfd* descriptors, nfds_t count, int timeout) {
  return poll(descriptors, count, timeout);
}

nanoseconds KernelCalls::Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return seconds(now.tv_sec) + nanoseconds(now.tv_nsec);
}

void KernelCalls::SleepUntil(nanoseconds time) {
  const auto whole = std::chrono::floor<seconds>(time);
  const timespec until = {static_cast<time_t>(whole.count()), static_cast<long>((time - whole).count())};
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

}  // namespace keplo
