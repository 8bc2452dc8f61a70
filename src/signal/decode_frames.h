#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace keplo {

/// Decodes the run symbols of a whole recording and keeps the borders of its frames.
///
/// The result holds the digits 0 and 1 in the order received and a G for each long mark or space; biphase
/// adds x and y for a pair of equal half bits, 00 and 11. Pulse distance ends at six marks side by side,
/// pulse width after the sixth mark in all.
/// @param symbols run symbols beginning at a mark; for RC5 a g and then the first frame
/// @param kind generic protocol; any other than SONY and RC5 is read as pulse distance
/// @param decoded replaced by the result; keeps its capacity
void DecodeFrames(std::string_view symbols, std::int16_t kind, std::string& decoded);

/// The first two frames of a decoded recording; either may be empty, and the last may be cut off by the end.
struct FramePair {
  std::string_view First, Second;  // parts of the decoded recording
  bool FirstEnded = false;         // a G stands after the first frame
  bool DoubleMarkAfter = false;    // two G stand after the first frame: what follows has a sync of its own
};

/// Cuts the first two frames out of what DecodeFrames gave.
FramePair CutFrames(std::string_view decoded);

}  // namespace keplo
