#include "host_program/output_pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace keplo::host {

namespace {

constexpr std::size_t kReadBytes = 16384;

/// Enough to read all that a pipe can hold, and its end.
constexpr int kDrainReads = 65536 / kReadBytes + 1;

}  // namespace

OutputPipe::OutputPipe(std::function<void(std::string_view)> take, std::function<void()> end)
    : take_(std::move(take)), end_(std::move(end)) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
  readEnd_.emplace(ends[0]);
  writeEnd_.emplace(ends[1]);
  fcntl(ends[0], F_SETFL, O_NONBLOCK);  // only our end: programs expect their output to block
  notifier_.emplace(ends[0], QSocketNotifier::Read);
  QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_, [this] { Read(); });
}

void OutputPipe::BecomeOutput() const {
  if (!writeEnd_) return;
  dup2(writeEnd_->Number(), STDOUT_FILENO);
  dup2(writeEnd_->Number(), STDERR_FILENO);
}

void OutputPipe::Drain() {
  for (int reads = 0; reads < kDrainReads && Read(); ++reads) {
  }
}

bool OutputPipe::Read() {
  std::array<char, kReadBytes> bytes{};
  const ssize_t count = readEnd_ ? read(readEnd_->Number(), bytes.data(), bytes.size()) : 0;
  if (count > 0) take_({bytes.data(), static_cast<std::size_t>(count)});
  if (count == 0) {
    if (notifier_) notifier_->setEnabled(false);
    end_();
  }
  return count > 0;
}

}  // namespace keplo::host
