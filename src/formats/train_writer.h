#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

#include "formats/pulse_text.h"

namespace keplo {

/// Marks and spaces in turn, neighbours of one kind added up and a space before the first mark dropped.
class TrainWriter {
 public:
  void Mark(int length) { Add(length, 0); }
  void Space(int length) {
    if (!train_.empty()) Add(length, 1);
  }
  /// Microseconds since the first mark.
  int Time() const { return time_; }
  /// With a closing space, if there is one.
  PulseTrain Take() { return std::move(train_); }
  /// From the first mark to the last.
  PulseTrain TakeMarkLast() {
    if (train_.size() % 2 == 0 && !train_.empty()) train_.pop_back();
    return Take();
  }

 private:
  void Add(int length, std::size_t parity) {
    if (length <= 0) return;
    time_ = std::min(time_ + std::min(length, kLongestPulse), kLongestPulse);
    if (train_.size() % 2 == parity) {
      train_.push_back(length);
    } else {
      train_.back() = std::min(train_.back() + length, kLongestPulse);
    }
  }

  PulseTrain train_;
  int time_ = 0;
};

}  // namespace keplo
