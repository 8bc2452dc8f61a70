#pragma once

#include <cstddef>
#include <vector>

#include "signal/second_look/frame_reader.h"

namespace keplo::robust {

/// Whether a piece is this frame, damaged in one place: its runs are those of the frame up to there, and from
/// there to the end. A piece that the capture cuts only has to begin like the frame.
bool IsPartOf(const OtherPiece& piece, const Frame& frame);

/// Whether a piece that the capture cuts begins like this frame, which then has not lost its own beginning.
bool BeginsAgainIn(const OtherPiece& piece, const Frame& frame);

/// Whether a piece shows that there is another frame than this one: the press is a message of several parts,
/// or a command of two frames of which one was damaged. Both are pulse distance.
bool TellsOfAnother(const OtherPiece& piece, const Frame& frame);

/// Whether the first piece of a capture is the end of a different frame right ahead of this one, made of the
/// same lengths: the capture began inside the first part of a message.
bool IsEndOfAnother(const OtherPiece& piece, const Frame& frame);

/// How many pieces of the press show that there is another frame than this one. A frame that lost several
/// marks in a row, and so fell into pieces, counts once.
std::ptrdiff_t CountTelling(const Findings& found, const Frame& frame);

}  // namespace keplo::robust
