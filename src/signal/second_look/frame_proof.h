#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "signal/second_look/frame_reader.h"

namespace keplo::robust {

/// The frame that the frames of one press prove: the one that is there twice, and longer than what differs or
/// such that it would do by itself.
/// @param found at least one frame
/// @return null if there is none
const Frame* ProvenFrame(const Findings& found);

/// Why frames that do not contradict each other are no proof of their digits.
enum class FrameDoubt : std::uint8_t {
  None,
  OddLength,    // one run is further off than the others let expect
  OneDigit,     // one digit keeps the others from proving each other
  FewDigits,    // a digit or two less than common protocols have
  BaseTime,     // none that remotes of such a code have
  Interference  // spikes or holes in it, each of which may have changed a digit
};

/// Why a frame was not believed.
/// @param equal how often it was sent
FrameDoubt DoubtOf(const Frame& frame, int equal);

/// Whether one frame, once or again and again, and its dittos are all there is of the press. Without a leader
/// one that is alone beside other pieces may have lost its head.
bool IsOnlyFrame(const Findings& found);

/// Whether the frames are two that take turns, both whole and with a leader of the same kind: a command of
/// two frames. What else is there must be a part of one of them.
bool AreTwoInTurns(const Findings& found);

/// Whether the pieces are one frame, sent again and again.
bool IsOneFrame(const std::vector<Piece>& pieces);

/// Whether a whole piece is about as long as the frames of no line code, and none of them.
/// @param found at least one unknown piece
bool HasOtherAsLong(const Findings& found);

/// Frames that take turns, as some remotes send a frame and its complement.
bool TakeTurns(const std::vector<Frame>& frames);

/// Frames without a mark of their own, which only the silence before them shows.
bool LackLeaders(const std::vector<Frame>& frames);

}  // namespace keplo::robust
