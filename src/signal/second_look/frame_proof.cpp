#include "signal/second_look/frame_proof.h"

#include <algorithm>
#include <cstdlib>

namespace keplo::robust {

namespace {

/// Whether two pieces are the same frame, sent twice.
bool IsRepeat(const Piece& one, const Piece& other) {
  constexpr int kSameRun = 3;  // samples
  return one.Size == other.Size && std::equal(one.First, one.First + one.Size, other.First,
                                              [](int a, int b) { return std::abs(a - b) <= kSameRun; });
}

bool ProvesItself(const Frame& frame) { return frame.Clear && frame.Shape->ProvesItself(frame); }

/// Whether a frame was sent more than once. The equal halves of a frame that a lost mark splits are not two.
bool IsRepeated(const std::vector<Frame>& frames, const Frame& wanted) {
  const auto isSame = [&](const Frame& frame) {
    return frame.SameCode(wanted) && (frame.Ends || !frame.Shape->HalvesLookWhole);
  };
  const auto first = std::find_if(frames.begin(), frames.end(), isSame);
  return first != frames.end() && std::find_if(first + 1, frames.end(), isSame) != frames.end();
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
    if (!IsRepeated(frames, frame)) continue;
    if (proven == nullptr) proven = &frame;
    if (!proven->SameCode(frame)) return nullptr;
  }
  if (proven != nullptr) return IsLongest(*proven, found) || ProvesItself(*proven) ? proven : nullptr;

  if (frames.size() > 1 || !ProvesItself(frames.front())) return nullptr;
  const bool doubtful = found.Stray || !IsLongest(frames.front(), found);
  return doubtful && !frames.front().Shape->ShowsLostRuns ? nullptr : &frames.front();
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
  return !frames.front().HasLeader() && frames.front().Shape->BeginsAtLeader;
}

}  // namespace keplo::robust
