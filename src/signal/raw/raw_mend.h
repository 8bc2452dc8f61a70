#pragma once

#include <vector>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// A signal without the frames in which marks or spaces were lost, where two frames near one are the same and
/// have them.
class SoundFrames {
 public:
  /// @param heard must stay; frames that are left out are what the others are compared with
  explicit SoundFrames(const HeardLengths& heard);
  SoundFrames(const SoundFrames&) = delete;
  SoundFrames& operator=(const SoundFrames&) = delete;

  /// Whether a frame was left out.
  bool IsMended() const { return !runs_.empty(); }
  const HeardLengths& Heard() const { return sound_; }

 private:
  std::vector<int> runs_;
  HeardLengths sound_;
};

}  // namespace keplo
