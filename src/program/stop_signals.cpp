#include "program/stop_signals.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "failure.h"

namespace keplo {

namespace {

/// Marks signals that do not end the program. The mark is a flag that the system stores, so that a plug-in,
/// which has its own copy of this code, sees what its host has set. It makes no difference to a handler that
/// writes to a pipe.
constexpr int kEndsNothing = SA_NODEFER;

/// Where the handler writes.
std::atomic<int> writeEnd{-1};
/// The thread that owns the object; code that blocks signals for a while does so there.
std::atomic<pthread_t> owner{};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<pthread_t>::is_always_lock_free);

void Write(int signal) {
  const int before = errno;
  if (pthread_equal(pthread_self(), owner) == 0) {
    pthread_kill(owner, signal);
    errno = before;
    return;
  }
  const auto number = static_cast<unsigned char>(signal);
  // If the pipe is full, there are enough signals in it.
  if (write(writeEnd, &number, 1) < 0) errno = before;
  errno = before;
}

void Ignore(int /*signal*/) {}

}  // namespace

StopSignals::StopSignals(const std::vector<int>& ending, const std::vector<int>& asking) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) throw Failure(errno, "No pipe can be made for signals.");
  readEnd_ = ends[0];
  writeEnd = ends[1];
  owner = pthread_self();
  Catch(ending, SA_RESTART);
  Catch(asking, SA_RESTART | kEndsNothing);
}

void StopSignals::Catch(const std::vector<int>& numbers, int flags) {
  struct sigaction action {};
  action.sa_handler = Write;
  action.sa_flags = flags;
  for (const int number : numbers) {
    caught_.push_back({number, {}});
    sigaction(number, &action, &caught_.back().Before);
  }
}

StopSignals::~StopSignals() {
  for (const Caught& signal : caught_) sigaction(signal.Number, &signal.Before, nullptr);
  close(writeEnd.exchange(-1));
  close(readEnd_);
}

bool StopSignals::WaitFor(int milliseconds) const { return WaitFor(milliseconds, {-1, -1, -1}); }

bool StopSignals::WaitFor(int milliseconds, std::array<int, 3> descriptors) const {
  pollfd waits[4] = {{readEnd_, POLLIN, 0}};
  for (std::size_t i = 0; i < descriptors.size(); ++i) waits[i + 1] = {descriptors[i], POLLIN, 0};
  return poll(waits, std::size(waits), milliseconds) != 0 && waits[0].revents != 0;
}

int StopSignals::Take() const {
  unsigned char number = 0;
  return read(readEnd_, &number, 1) == 1 ? number : 0;
}

bool IsIgnored(int number) {
  struct sigaction current {};
  sigaction(number, nullptr, &current);
  return current.sa_handler == SIG_IGN;
}

bool EndsProgram(int number) {
  struct sigaction current {};
  sigaction(number, nullptr, &current);
  return current.sa_handler != SIG_IGN && (current.sa_flags & kEndsNothing) == 0;
}

std::vector<int> EndingSignals() {
  std::vector<int> numbers = {SIGINT, SIGTERM, SIGQUIT};
  for (const int number : {SIGHUP, SIGPIPE}) {
    if (!IsIgnored(number)) numbers.push_back(number);
  }
  return numbers;
}

void IgnoreFileSizeSignal() {
  // Not SIG_IGN, which child processes would inherit.
  struct sigaction action {};
  action.sa_handler = Ignore;
  action.sa_flags = SA_RESTART;
  sigaction(SIGXFSZ, &action, nullptr);
}

}  // namespace keplo
