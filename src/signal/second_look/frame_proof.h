#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "signal/second_look/frame_reader.h"

namespace keplo::robust {

/// The frame that a press proves: one that was sent twice, and is longer than everything that differs from
/// it; or one that would be believed alone.
/// @param found at least one frame
/// @return null if there is none
const Frame* ProvenFrame(const Findings& found);

/// Why frames that agree still do not prove their digits.
enum class FrameDoubt : std::uint8_t {
  None,
  OddLength,    // one run is further off than the others would suggest
  OneDigit,     // all digits but one pass the protocol's own check
  FewDigits,    // a digit or two less than common protocols have
  BaseTime,     // not one that remotes of this line code have
  Interference  // spikes or holes in it, each of which may have changed a digit
};

/// Why a frame was not believed.
/// @param equal how often it was sent
FrameDoubt DoubtOf(const Frame& frame, int equal);

/// Whether the press holds nothing but one frame, sent once or repeatedly, and its dittos. A single frame
/// without a leader does not count beside other pieces: it may have lost its beginning.
bool IsOnlyFrame(const Findings& found);

/// Whether the frames are two that take turns, both whole and with a leader of the same kind: a command of
/// two frames. Anything else in the press must be a part of one of them.
bool AreTwoInTurns(const Findings& found);

/// Whether the pieces are one frame, sent again and again.
bool IsOneFrame(const std::vector<Piece>& pieces);

/// Whether some whole piece is about as long as the frames that fit no line code, but is none of them.
/// @param found at least one unknown piece
bool HasOtherAsLong(const Findings& found);

/// Whether the frames take turns, as some remotes send a frame and its complement.
bool TakeTurns(const std::vector<Frame>& frames);

/// Whether the frames have no leader, so that only the silence before them shows where they begin.
bool LackLeaders(const std::vector<Frame>& frames);

}  // namespace keplo::robust
