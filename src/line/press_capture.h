#pragma once

#include <cstddef>
#include <string>

#include "formats/recording.h"
#include "line/shaping/shaper.h"

namespace keplo {

/// Samples a press into a capture buffer, from its first edge on: eight samples a byte, the earliest in the
/// most significant bit, NUL after the signal.
/// @param sampleTime microseconds
/// @param capture replaced by bufferBytes bytes
void PulsesToCapture(Pulses press, double sampleTime, std::size_t bufferBytes, std::string& capture);
std::string PulsesToCapture(Pulses press, double sampleTime, std::size_t bufferBytes);

/// Makes captures of presses; keeps its memory from one to the next.
class PressSampler {
 public:
  /// The signal of a press as a buffer of the given size would hold it: held, shaped and sampled. Raw bytes
  /// are never shaped, and only cut to the size.
  /// @param signal replaced by bufferBytes bytes for a pulse train, at most that many for raw bytes
  void Sample(const Press& press, std::size_t bufferBytes, const LineOptions& options, std::string& signal);

  /// A press as its key sends it: cleaned and held, but not shaped.
  PulseTrain OnAir(Pulses press, const LineOptions& options);

 private:
  void Clean(Pulses press, const LineOptions& options);

  ShapingSpace space_;
  PulseTrain clean_, held_, shaped_;
};

/// As PressSampler::OnAir.
PulseTrain PressOnAir(Pulses press, const LineOptions& options);

/// As PressSampler::Sample.
std::string SignalOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options);

/// The whole capture buffer: SignalOfPress with NUL after it.
std::string CaptureOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options);

}  // namespace keplo
