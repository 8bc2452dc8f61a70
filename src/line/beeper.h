#pragma once

#include <cstdint>
#include <vector>

#include "line/device_calls.h"
#include "line/device_line.h"

namespace keplo {

/// A tone with soft edges, 16 bits a sample, which begins and ends near zero so that nothing clicks.
/// @param frequency Hz
/// @param duration milliseconds
/// @param rate samples a second
std::vector<std::int16_t> MakeTone(std::int32_t frequency, std::int32_t duration, std::int32_t rate);

/// Sounds tones on the system's default sound device. Where there is none it is silent, which is told once,
/// and tries again with the next tone.
class Beeper {
 public:
  Beeper(DeviceCalls& calls, TellUser tell);

  /// Returns when the tone is over, also where the device takes it at once or there is none.
  /// @param frequency Hz
  /// @param duration milliseconds
  void Sound(std::int32_t frequency, std::int32_t duration);

 private:
  DeviceCalls& calls_;
  TellUser tell_;
  bool told_ = false;
};

}  // namespace keplo
