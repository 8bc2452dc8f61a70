#pragma once

#include <cstddef>
#include <vector>

#include "signal/second_look/frame_reader.h"

namespace keplo::robust {

/// Whether a piece is a frame that was damaged in one place: its runs are those of the frame up to there, and
/// after it those up to the frame's end. A piece that is cut has its head alone.
bool IsPartOf(const OtherPiece& piece, const Frame& frame);

/// Whether a piece that the capture has cut begins as a frame, which so has not lost its head.
bool BeginsAgainIn(const OtherPiece& piece, const Frame& frame);

/// Whether a piece tells of another frame than this one: that the press is a message of several parts, or the
/// command of two frames of which one was damaged. Both are pulse distance.
bool TellsOfAnother(const OtherPiece& piece, const Frame& frame);

/// Whether the first piece of a capture is the end of another frame that stood right in front of this one, of
/// the same lengths: the capture of a message of parts began within the first.
bool IsEndOfAnother(const OtherPiece& piece, const Frame& frame);

/// How often the rest of the press tells of another frame than this one. What marks that were lost in a row
/// have left of one frame counts once.
std::ptrdiff_t CountTelling(const Findings& found, const Frame& frame);

}  // namespace keplo::robust
