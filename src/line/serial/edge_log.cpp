#include "line/serial/edge_log.h"

#include <sys/eventfd.h>

#include <algorithm>

namespace keplo {

EdgeLog::EdgeLog(DeviceCalls& calls) : calls_(calls), wake_(calls, eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void EdgeLog::Wake() {
  const std::uint64_t one = 1;
  calls_.Write(wake_.Get(), &one, sizeof one);
}

void EdgeLog::Begin() {
  edges_.clear();
  added_ = taken_ = 0;
  missed_ = 0;
  ended_ = false;
  Rest();
}

void EdgeLog::Add(Edge edge, std::uint64_t missed) {
  const std::size_t place = added_;
  const bool room = place - taken_ < kMostEdges;
  if (room) {
    ring_[place % kMostEdges] = edge;
    added_ = place + 1;
  }
  missed_ += missed + (room ? 0 : 1);
  Wake();
}

void EdgeLog::End() {
  ended_ = true;
  Wake();
}

std::span<const Edge> EdgeLog::Edges() {
  std::size_t place = taken_;
  for (const std::size_t end = added_; place < end && edges_.size() < kMostEdges; ++place) {
    edges_.push_back(ring_[place % kMostEdges]);
  }
  taken_ = place;
  return edges_;
}

void EdgeLog::Put(Edge edge) {
  if (edges_.size() < kMostEdges) edges_.push_back(edge);
}

void EdgeLog::Drop(std::size_t count) {
  edges_.erase(edges_.begin(), edges_.begin() + static_cast<std::ptrdiff_t>(std::min(count, edges_.size())));
}

void EdgeLog::Rest() {
  std::uint64_t count = 0;
  calls_.Read(wake_.Get(), &count, sizeof count);
}

void EdgeLog::WaitUntil(std::chrono::nanoseconds time) {
  const std::chrono::nanoseconds left = time - calls_.Now();
  if (left.count() <= 0) return;
  pollfd wake = {wake_.Get(), POLLIN, 0};
  // Poll counts in milliseconds; it comes early by none, so that a wait never spins.
  const auto timeout = std::chrono::ceil<std::chrono::milliseconds>(left).count();
  if (calls_.Poll(&wake, 1, static_cast<int>(timeout)) > 0) Rest();
}

}  // namespace keplo
