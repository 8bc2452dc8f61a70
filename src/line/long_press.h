#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

#include "formats/pulse_text.h"

namespace keplo {

/// A press that lasts longer than one capture, while it is on air. A capture of it begins with a frame, since
/// a line that meets it within one waits for the next.
class LongPress {
 public:
  /// @param train microseconds, mark first
  /// @param start when its first mark begins, on the clock of the line
  LongPress(PulseTrain train, std::chrono::microseconds start);

  std::chrono::microseconds Start() const { return start_; }
  std::chrono::microseconds End() const { return end_; }
  /// Whether a frame has begun before the eyes of someone who looks at the line from one time to another. It
  /// waits until it is taken.
  bool HasBegun(std::chrono::microseconds from, std::chrono::microseconds to);
  /// When the frame began that waits.
  std::chrono::microseconds FrameStart() const { return waiting_->Start; }
  /// What is on air for a time from the beginning of the frame that waits.
  PulseTrain Take(std::chrono::microseconds time);

 private:
  struct FrameBeginning {
    std::size_t Run;
    std::chrono::microseconds Start;
  };

  PulseTrain train_;
  std::chrono::microseconds start_, end_;
  std::optional<FrameBeginning> waiting_;
};

}  // namespace keplo
