#include "line/serial/edge_log.h"

#include <sys/eventfd.h>

#include <algorithm>

namespace keplo {

namespace {

/// Poll counts in milliseconds; it may come early by none, so that a wait never spins.
int MillisecondsUntil(std::chrono::nanoseconds left) {
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

}  // namespace

EdgeLog::EdgeLog(DeviceCalls& calls) : calls_(calls), wake_(calls, eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void EdgeLog::Wake() {
  const std::uint64_t one = 1;
  calls_.Write(wake_.Get(), &one, sizeof one);
}

void EdgeLog::Begin() {
  {
    const std::lock_guard lock(mutex_);
    edges_.clear();
    missed_ = 0;
    ended_ = false;
  }
  Rest();
}

void EdgeLog::Add(Edge edge, std::uint64_t missed) {
  {
    const std::lock_guard lock(mutex_);
    // The places of the edges before it stay as they are for whoever captures.
    if (edges_.size() == kMostEdges) {
      ++missed_;
    } else {
      edges_.push_back(edge);
    }
    missed_ += missed;
  }
  Wake();
}

void EdgeLog::End() {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  Wake();
}

bool EdgeLog::Ended() const {
  const std::lock_guard lock(mutex_);
  return ended_;
}

bool EdgeLog::Empty() const {
  const std::lock_guard lock(mutex_);
  return edges_.empty();
}

std::vector<Edge> EdgeLog::Edges() const {
  const std::lock_guard lock(mutex_);
  return edges_;
}

void EdgeLog::Drop(std::size_t count) {
  const std::lock_guard lock(mutex_);
  edges_.erase(edges_.begin(), edges_.begin() + static_cast<std::ptrdiff_t>(std::min(count, edges_.size())));
}

void EdgeLog::Clear() {
  const std::lock_guard lock(mutex_);
  edges_.clear();
}

std::uint64_t EdgeLog::Missed() const {
  const std::lock_guard lock(mutex_);
  return missed_;
}

void EdgeLog::Rest() {
  std::uint64_t count = 0;
  calls_.Read(wake_.Get(), &count, sizeof count);
}

bool EdgeLog::WaitUntil(std::chrono::nanoseconds time) {
  const std::chrono::nanoseconds left = time - calls_.Now();
  if (left.count() <= 0) return false;
  pollfd wake = {wake_.Get(), POLLIN, 0};
  if (calls_.Poll(&wake, 1, MillisecondsUntil(left)) <= 0) return false;
  Rest();
  return true;
}

}  // namespace keplo
