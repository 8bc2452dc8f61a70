#pragma once

#include <cstdint>

#include "config/settings.h"
#include "signal/win32_ser.h"

namespace keplo {

/// Beeps, unless the user has turned them off.
class Beeps {
 public:
  Beeps(Win32Ser& line, const Settings& settings) : line_(line), settings_(settings) {}

  /// @param frequency Hz
  /// @param duration milliseconds
  void Sound(std::int32_t frequency, std::int32_t duration) const {
    if (settings_.BeepOn) line_.SpeakBeep(frequency, duration);
  }

 private:
  Win32Ser& line_;
  const Settings& settings_;
};

}  // namespace keplo
