#pragma once

#include <cstddef>
#include <string>

#include "formats/recording.h"
#include "line/shaping/shaper.h"

namespace keplo {

/// Samples a press into a capture buffer, from its first edge on: eight samples a byte, the earliest in the
/// most significant bit, NUL behind the signal.
/// @param sampleTime microseconds
std::string PulsesToCapture(const PulseTrain& train, double sampleTime, std::size_t bufferBytes);

/// The signal of a press as a buffer of the given size would hold it: held, shaped and sampled. Raw bytes are
/// never shaped, and only cut to the size.
/// @return bufferBytes bytes for a pulse train, at most that many for raw bytes
std::string SignalOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options);

/// The whole capture buffer: SignalOfPress with NUL behind it.
std::string CaptureOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options);

}  // namespace keplo
