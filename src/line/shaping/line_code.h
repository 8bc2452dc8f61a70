#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "line/shaping/frames.h"

namespace keplo {

/// Lengths that the marks and spaces of a line code have, in base times: one and a longer one, or one alone.
struct LineUnits {
  int LongMark;   // 1 if all marks are alike
  int LongSpace;  // 1 if all spaces are alike

  bool operator==(const LineUnits&) const = default;
};

inline constexpr LineUnits kPulseDistance2 = {1, 2};
inline constexpr LineUnits kPulseDistance3 = {1, 3};
inline constexpr LineUnits kPulseWidth = {2, 1};
inline constexpr LineUnits kBiphase = {2, 2};

/// Longest run of a line code, base times.
inline constexpr int kMostUnits = 3;

/// Stands for a leader and its space among the units of a frame.
inline constexpr int kLeader = 0;

/// Units of the runs of one frame.
using FrameUnits = std::span<const int>;

/// What a press tells of its remote and of the receiver that recorded it.
struct PressTiming {
  double Unit;    // base time, microseconds
  double Excess;  // by which the receiver made marks too long and spaces too short, microseconds
  LineUnits Code;

  /// Length on air of a run of a frame, microseconds.
  /// @param place from 0; marks stand at even places
  double OnAir(std::size_t place, int run) const { return run + (place % 2 == 0 ? -Excess : Excess); }
};

/// Measures a press that is plainly in one line code.
/// @return nothing for a press that is not, or whose excess is none that a receiver has
std::optional<PressTiming> MeasurePress(std::span<const Frame> frames);

/// Writes a frame in units of its line code.
/// @param units room for those of all its runs
/// @return false if a run of it lies between the lengths of the code, or far off them
bool WriteUnits(const Frame& frame, const PressTiming& timing, int* units);

}  // namespace keplo
