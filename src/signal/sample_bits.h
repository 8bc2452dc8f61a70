#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo {

/// Length of the monitoring tick's capture buffer, bytes.
inline constexpr std::size_t kMonitorCaptureBytes = 510;

/// A capture that is shorter after its last sample's silence holds no signal, bytes.
inline constexpr std::size_t kShortestCapture = 50;

/// Samples or carrier slots in a byte.
inline constexpr std::size_t kBitsPerByte = 8;

/// One sample counts as this many microseconds wherever a base time becomes a pulse length.
inline constexpr int kNominalSampleTime = 55;

/// Turns a capture into its sample string: one character 0 or 1 a sample, eight a byte, most significant bit
/// first.
std::string SamplesToBits(std::string_view capture);

}  // namespace keplo
