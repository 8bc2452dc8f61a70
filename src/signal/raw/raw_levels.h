#pragma once

#include <optional>
#include <vector>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// A signal in which marks and spaces fall into a few lengths each.
struct LeveledSignal {
  RawLengths Lengths;       // equal ones have the mean of their level, which jitter and raster leave alone
  std::vector<int> Levels;  // of each length: its place among the levels of marks or of spaces, from 0
};

/// Whether pulses are of one length, with one space between them and no frames, as a lamp makes them, or of
/// more lengths than a remote has.
bool IsNoise(const HeardLengths& heard);

/// Finds the levels of a signal.
/// @return empty for one that is no clean signal: too short, of too many lengths, or all of one length, as
/// flicker and interference are
std::optional<LeveledSignal> FindLevels(const HeardLengths& heard);

}  // namespace keplo
