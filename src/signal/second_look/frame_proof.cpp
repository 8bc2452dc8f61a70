#include "signal/second_look/frame_proof.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "signal/code_values.h"
#include "signal/decode.h"

namespace keplo::robust {

namespace {

/// Whether two pieces are the same frame, sent twice.
bool IsRepeat(const Piece& one, const Piece& other) {
  constexpr int kSameRun = 3;  // samples
  return one.Size == other.Size && std::equal(one.First, one.First + one.Size, other.First,
                                              [](int a, int b) { return std::abs(a - b) <= kSameRun; });
}

/// Whether the last of seven groups of four digits is the sum of the four groups before it, as in frames of
/// 28 digits that dittos follow.
bool EndsInItsSum(std::string_view digits) {
  if (digits.size() != 28) return false;
  const auto group = [&](std::size_t number) { return BinToInt(digits.substr(4 * number, 4)); };
  return (group(2) + group(3) + group(4) + group(5)) % 16 == group(6);
}

/// Whether a frame may be taken without an equal one beside it. A frame that lost marks or was cut has other
/// lengths than these; what the many user-defined codes have is proven by their repeats.
bool ProvesItself(const Frame& frame) {
  if (!frame.Clear) return false;
  switch (frame.Kind) {
    case kSony:
      return frame.KnownLeader && frame.Ends &&
             (frame.Digits == 12 || frame.Digits == 15 || frame.Digits == 20);
    case kRc5:
      return true;  // exact in its length and all its pairs, between two silences
    default:
      if (!frame.KnownLeader || !frame.Ends) return false;
      return (frame.Digits >= 32 && frame.Digits % 4 == 0) ||
             (frame.Dittos > 0 && EndsInItsSum(DecodeCode(frame.Symbols, kNec)));
  }
}

/// How often a frame was sent. The equal halves of a frame that a lost mark splits are not two of them.
std::size_t CountOf(const std::vector<Frame>& frames, const Frame& wanted) {
  return static_cast<std::size_t>(std::count_if(frames.begin(), frames.end(), [&](const Frame& frame) {
    return frame.SameCode(wanted) && (frame.Ends || frame.Kind != kNec);
  }));
}

/// Whether a frame is longer than all pieces of the press that differ: lost marks make a frame shorter.
bool IsLongest(const Frame& frame, const Findings& found) {
  return frame.Runs > found.MostUnread &&
         std::all_of(found.Frames.begin(), found.Frames.end(),
                     [&](const Frame& other) { return other.SameCode(frame) || other.Runs < frame.Runs; });
}

}  // namespace

const Frame* ProvenFrame(const Findings& found) {
  const std::vector<Frame>& frames = found.Frames;
  const Frame* proven = nullptr;
  for (const Frame& frame : frames) {
    if (CountOf(frames, frame) < 2) continue;
    if (proven == nullptr) proven = &frame;
    if (!proven->SameCode(frame)) return nullptr;
  }
  if (proven != nullptr) return IsLongest(*proven, found) || ProvesItself(*proven) ? proven : nullptr;

  if (frames.size() > 1 || !ProvesItself(frames.front())) return nullptr;
  // Biphase would show a stray or a lost run in its pairs.
  const bool doubtful = found.Stray || !IsLongest(frames.front(), found);
  return doubtful && frames.front().Kind != kRc5 ? nullptr : &frames.front();
}

bool IsSingleFrame(const Findings& found) {
  return found.Frames.size() == 1 && found.Others == 0 && found.Frames.front().Clear &&
         found.Frames.front().Ends && found.Frames.front().HasLeader();
}

bool IsOneFrame(const std::vector<Piece>& pieces) {
  return pieces.size() > 1 && std::all_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
           return IsRepeat(piece, pieces.front());
         });
}

bool TakeTurns(const std::vector<Frame>& frames) {
  if (frames.size() < 3 || frames[0].SameCode(frames[1])) return false;
  for (std::size_t i = 2; i < frames.size(); ++i) {
    if (!frames[i].SameCode(frames[i - 2])) return false;
  }
  return true;
}

bool LackLeaders(const std::vector<Frame>& frames) {
  return !frames.front().HasLeader() && frames.front().Kind != kRc5;
}

}  // namespace keplo::robust
