#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "failure.h"

namespace keplo {

/// One key press as a receiver records it: lengths in microseconds of marks and spaces in turn, mark first.
using PulseTrain = std::vector<int>;

/// Longest mark or space that a recording may hold, microseconds: mode2 lengths have 24 bits.
inline constexpr int kLongestPulse = 0xFF'FFFF;

/// A silence of this many microseconds ends a key press: the repeats of a held key follow each other faster.
inline constexpr int kPressSilence = 150'000;

/// A recording that cannot be read; the text names file, line, what was found and what was expected.
class FormatError : public Failure {
 public:
  /// Number of an invalid file format in error records.
  static constexpr int kNumber = 321;

  explicit FormatError(const std::string& text) : Failure(kNumber, text) {}
};

/// Reads the key presses of a recording.
///
/// Two forms are read, line by line, and may be mixed: "pulse N", "space N" and "timeout N" lines, and lines
/// of signed lengths "+N -N ...", each of which is a press of its own. Comments begin with # or //; a
/// one-line press may carry its closing silence in one, "# timeout N". "carrier N" lines are read over.
/// Lengths are microseconds. Neighbours of one kind are summed and a space before the first mark is
/// dropped. A press ends at a timeout, at the end of a line of signed lengths and at a silence of
/// kPressSilence or more.
/// @param name what the text was read from, for error texts
/// @return at least one press
/// @throws FormatError for a word that is none of these, a length out of bounds, or a text without a mark
std::vector<PulseTrain> ParsePulseText(std::string_view text, std::string_view name);

/// The press as "pulse N" and "space N" lines; a closing space stands as it is.
std::string Mode2Text(const PulseTrain& train);

/// The press as one line of signed lengths, with a line end.
std::string OneLineText(const PulseTrain& train);

}  // namespace keplo
