#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "signal/signal_state.h"

namespace keplo {

class Win32Ser;

/// Length of the calibration's capture buffer, bytes, and how much of it a capture may fill.
inline constexpr std::size_t kCalibrationCaptureBytes = 150;
inline constexpr std::int32_t kCalibrationLimit = 100;

/// What comes next in a calibration.
enum class CalibrationStep {
  Measure,    // once more, at the delay reached
  NoSignal,   // the key was let go
  TooSlow,    // the base time is too short without any delay
  Failed,     // the delay is beyond what any machine needs
  Succeeded,  // the delay is the result
};

/// The search for the delay at which the base time of a SONY remote, 600 us, is 10 samples: the middle
/// between the first delay with a base time of 10 and the first one with 9.
///
/// The delay rises by one with each measurement from 0, but for a base time of 9 that comes before any 10,
/// and for a signal without a base time: both are measured again.
class CalibrationSearch {
 public:
  /// Delay to measure at next; after the end the one reached, or the result.
  std::int16_t Delay() const { return delay_; }

  /// Takes the measurement at Delay().
  /// @param baseT base time T, samples; nothing if it could not be measured
  CalibrationStep Take(std::optional<std::int16_t> baseT);

 private:
  std::int16_t delay_ = 0;
  // First delay with a base time of 10. 0 is none: at no delay there is nothing to take the middle of.
  std::int16_t first_ = 0;
};

/// A calibration on a line, one measurement at a time, with its beeps.
class Calibration {
 public:
  /// @param signal takes the captures and what is measured in them
  /// @param delay the PROCDELAY setting; follows the search, and keeps what it has reached
  Calibration(Win32Ser& line, SignalState& signal, std::int16_t& delay);

  /// Waits for a signal and measures it.
  CalibrationStep Measure();

  std::int16_t Delay() const { return search_.Delay(); }
  /// Base time of the last signal, samples; nothing before the first, and if it could not be measured.
  std::optional<std::int16_t> BaseT() const { return baseT_; }

 private:
  Win32Ser& line_;
  SignalState& signal_;
  std::int16_t& delay_;
  CalibrationSearch search_;
  std::optional<std::int16_t> baseT_;
};

/// What to tell the user at the end of a calibration, lines ended by CR LF.
/// @param delay the result
std::string CalibrationText(CalibrationStep end, std::int16_t delay);

}  // namespace keplo
