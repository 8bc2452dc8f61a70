#include "line/long_press.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

namespace keplo {

namespace {

using std::chrono::microseconds;

/// Longer than any space inside a frame, shorter than any between two, of which Dish has the shortest with
/// 6 ms less what receivers lengthen its marks by; microseconds.
constexpr int kGapBetweenFrames = 5'200;

}  // namespace

LongPress::LongPress(PulseTrain train, microseconds start)
    : train_(std::move(train)),
      start_(start),
      end_(start + microseconds(std::accumulate(train_.begin(), train_.end(), std::int64_t{0}))) {}

bool LongPress::HasBegun(microseconds from, microseconds to) {
  microseconds time = start_;
  for (std::size_t i = 0; i + 1 < train_.size() && !waiting_; ++i) {
    time += microseconds(train_[i]);
    const bool begins = i % 2 == 1 && train_[i] >= kGapBetweenFrames;
    if (begins && time > from && time <= to) waiting_ = {i + 1, time};
  }
  return waiting_.has_value();
}

PulseTrain LongPress::Take(microseconds time) {
  PulseTrain taken;
  std::int64_t left = time.count();
  for (std::size_t i = waiting_->Run; i < train_.size() && left > 0; ++i) {
    taken.push_back(static_cast<int>(std::min<std::int64_t>(train_[i], left)));
    left -= train_[i];
  }
  waiting_.reset();
  return taken;
}

}  // namespace keplo
