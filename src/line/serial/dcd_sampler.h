#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "formats/pulse_text.h"
#include "line/device_calls.h"

namespace keplo {

/// How evenly a capture was sampled.
struct SamplingReport {
  std::uint64_t Samples = 0;
  std::uint64_t Filled = 0;  // missed by a late wake-up, and filled with the level that was read then
  std::uint64_t Late = 0;    // read more than half a sample after their time
};

/// The beginning of a signal that is known by its lengths.
struct KnownBeginning {
  std::chrono::nanoseconds From;  // when it began
  PulseTrain Lengths;             // microseconds, mark first, up to where the samples take over
};

/// Samples a line against absolute deadlines until it has been silent for long enough or the buffer is full:
/// a late wake-up fills what it missed, so that the signal is never stretched.
/// @param known is filled in ahead of the samples
/// @param present whether the signal is there now; none if the device is gone, which ends the capture
/// @param buffer eight samples a byte, the earliest in the most significant bit; bytes after the signal stay
/// as they are
SamplingReport SampleSignal(DeviceCalls& calls, const KnownBeginning& known,
                            const std::function<std::optional<bool>()>& present, std::span<char> buffer,
                            std::chrono::nanoseconds sampleTime, std::chrono::nanoseconds endSilence);

}  // namespace keplo
