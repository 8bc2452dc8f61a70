#include "signal/second_look/frame_parts.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "signal/first_analysis.h"

namespace keplo::robust {

namespace {

/// How many runs in a row are the same in a piece and in a frame, from their first marks on or from their
/// last ones back.
std::size_t SameRuns(const int* one, const int* other, std::size_t most, std::ptrdiff_t step,
                     const Frame& frame) {
  const double half = std::max(3.0, frame.Unit / 2);
  double nearMark = half, nearSpace = half;
  if (frame.Kind() == kNec) {
    // All marks of pulse distance have one length, so that a stray one is still the same digit, and a space
    // is another digit only beyond the middle between the two lengths.
    nearMark = std::max(half, 0.75 * frame.Unit);
    nearSpace = std::max(half, std::min(0.75, 0.375 * frame.StepUnits) * frame.Unit);
  }
  std::size_t same = 0;
  while (same < most && std::abs(*one - *other) <= (same % 2 == 0 ? nearMark : nearSpace)) {
    ++same;
    if (same == most) break;
    one += step;
    other += step;
  }
  return same;
}

/// Whether a piece and a frame begin and end alike, and differ in no more than so many runs between.
bool BeginAndEndAlike(const OtherPiece& piece, const Frame& frame, std::size_t damaged) {
  constexpr std::size_t kCut = 1, kLeader = 2;  // runs
  for (const std::size_t skipped : {std::size_t{0}, kLeader}) {
    if (piece.Of.Size <= skipped) return true;
    const int* const first = piece.Of.First + skipped;
    const std::size_t size = piece.Of.Size - skipped;
    const std::size_t most = std::min(size, frame.Runs);
    std::size_t same = SameRuns(first, frame.First, most, 1, frame);
    if (piece.IsCut) {
      if (same + kCut >= size) return true;
      continue;
    }
    same += SameRuns(first + size - 1, frame.First + frame.Runs - 1, most, -1, frame);
    if (same + damaged >= size) return true;
  }
  return false;
}

/// Whether a run is one of these lengths, or nearly.
bool IsOneOf(int run, const Lengths& lengths, double near) {
  return std::any_of(lengths.Of.begin(), lengths.Of.begin() + static_cast<std::ptrdiff_t>(lengths.Number),
                     [&](const Length& length) { return std::abs(run - length.Mean) <= near; });
}

/// Whether each edge of a piece is where the frame has one, counted from the beginning or back from the end.
/// Lost marks and spaces take edges away and leave the others in their places.
/// @param step 1 from the beginning, -1 from the end
bool HasOnlyEdgesOf(RunSpan piece, RunSpan frame, int step, double unit) {
  const double near = std::max(3.0, 0.4 * unit);
  const auto length = [step](RunSpan runs, std::size_t i) {
    return runs[step > 0 ? i : runs.size() - 1 - i];
  };
  int edge = 0, frameEdge = 0;
  std::size_t next = 0;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    edge += length(piece, i);
    while (next < frame.size() && edge - frameEdge > near) frameEdge += length(frame, next++);
    if (std::abs(edge - frameEdge) > near) return false;
  }
  return true;
}

/// Whether a piece is what lost marks and spaces have left of a frame. One with a leader, and with the
/// frame's own silence behind it, has lost nothing at its ends.
bool IsLeftOf(const OtherPiece& piece, const Frame& frame) {
  const bool led = HasLeaderInside(piece.Of);
  const std::size_t leader = led ? 2 : 0;
  const RunSpan runs(piece.Of.First + leader, piece.Of.Size - leader), whole(frame.First, frame.Runs);
  const bool fromFirst = HasOnlyEdgesOf(runs, whole, 1, frame.Unit);
  const bool fromLast = !piece.IsCut && HasOnlyEdgesOf(runs, whole, -1, frame.Unit);
  const bool keepsEnds = led && frame.HasLeader() && std::abs(piece.Of.After - frame.After) <= frame.Unit;
  return keepsEnds ? fromFirst && fromLast : fromFirst || fromLast;
}

/// Everything but frames of this length, in the order of the press. Frames of other lengths belong to it, as
/// the first part of a frame that lost marks in a row may read as a shorter frame.
std::vector<OtherPiece> RestOf(const Findings& found, const Frame& frame) {
  std::vector<OtherPiece> pieces = found.Others;
  for (const Frame& other : found.Frames) {
    if (other.Kind() != kNec || other.Runs == frame.Runs) continue;
    const std::size_t leader = other.HasLeader() ? 2 : 0;
    pieces.push_back({{other.First - leader, other.Runs + leader, other.After}, false, other.Clear});
  }
  std::sort(pieces.begin(), pieces.end(),
            [](const OtherPiece& a, const OtherPiece& b) { return a.Of.First < b.Of.First; });
  return pieces;
}

/// A piece that marks lost in a row have split.
struct SplitPiece {
  OtherPiece Whole;
  std::size_t Parts = 1;
};

/// Too few runs to tell whether they fall into lengths count as clean.
bool IsClean(const OtherPiece& piece) {
  constexpr std::size_t kFew = 5;
  return piece.IsClean || piece.Of.Size < kFew;
}

/// How long the longest frame of as many digits is, samples.
double LongestOf(const Frame& frame) {
  const double digit = (2 + frame.StepUnits) * frame.Unit;
  return static_cast<double>(frame.Runs) / 2 * digit + frame.Led.Mark + frame.Led.Space + frame.Unit;
}

/// Joins a piece with those after it that fit into one frame with it.
SplitPiece JoinedFrom(const std::vector<OtherPiece>& pieces, std::size_t place, double longest) {
  SplitPiece joined = {pieces[place]};
  Piece& whole = joined.Whole.Of;
  for (std::size_t next = place + 1; next < pieces.size(); ++next) {
    const OtherPiece& piece = pieces[next];
    const int* const end = piece.Of.First + piece.Of.Size;
    const bool follows = piece.Of.First == whole.First + whole.Size + 1;
    if (!follows || std::accumulate(whole.First, end, 0) > longest) break;
    const bool clean = IsClean(joined.Whole) && IsClean(piece);
    joined.Whole = {
        {whole.First, static_cast<std::size_t>(end - whole.First), piece.Of.After}, piece.IsCut, clean};
    ++joined.Parts;
  }
  return joined;
}

constexpr std::size_t kTelling = 9;  // runs; fewer prove nothing

/// @param damaged runs between its head and its end that may differ
bool Tells(const OtherPiece& piece, const Frame& frame, std::size_t damaged) {
  return frame.Kind() == kNec && piece.IsClean && piece.Of.Size >= kTelling &&
         !BeginAndEndAlike(piece, frame, damaged) && !IsLeftOf(piece, frame);
}

constexpr std::size_t kDamagedOnce = 6;  // runs that a spike or a hole makes of one
constexpr std::size_t kJoint = 1;        // runs, where parts of a frame are joined

/// Whether nothing but one silence stands between a piece and a frame with its leader.
bool IsRightAhead(const Piece& piece, const Frame& frame) {
  constexpr std::ptrdiff_t kLeader = 2, kSilence = 1;  // runs
  return piece.First + piece.Size + kSilence == frame.First - (frame.HasLeader() ? kLeader : 0);
}

}  // namespace

bool IsPartOf(const OtherPiece& piece, const Frame& frame) {
  return BeginAndEndAlike(piece, frame, kDamagedOnce);
}

bool BeginsAgainIn(const OtherPiece& piece, const Frame& frame) {
  constexpr std::size_t kCut = 1;  // runs
  const std::size_t most = std::min(piece.Of.Size, frame.Runs);
  return piece.IsCut && piece.Of.Size >= kTelling &&
         SameRuns(piece.Of.First, frame.First, most, 1, frame) + kCut >= piece.Of.Size;
}

bool TellsOfAnother(const OtherPiece& piece, const Frame& frame) { return Tells(piece, frame, kDamagedOnce); }

bool IsEndOfAnother(const OtherPiece& piece, const Frame& frame) {
  constexpr std::size_t kFewest = 3;  // runs, of which the first may have begun before the capture
  if (frame.Kind() != kNec || piece.Of.Size < kFewest || !IsRightAhead(piece.Of, frame)) return false;
  const RunSpan runs(piece.Of.First, piece.Of.Size);
  const double near = std::max(3.0, frame.Unit / 2);
  for (std::size_t i = 1; i < runs.size(); ++i) {
    if (!IsOneOf(runs[i], i % 2 == 0 ? frame.Marks : frame.Spaces, near)) return false;
  }
  const std::size_t most = std::min(runs.size() - 1, frame.Runs);
  return SameRuns(&runs.back(), frame.First + frame.Runs - 1, most, -1, frame) < most;
}

std::ptrdiff_t CountTelling(const Findings& found, const Frame& frame) {
  const std::vector<OtherPiece> pieces = RestOf(found, frame);
  std::ptrdiff_t telling = std::count_if(found.Frames.begin(), found.Frames.end(), [&](const Frame& other) {
    return other.Kind() == kNec && other.Clear && other.Runs == frame.Runs && !other.SameCode(frame);
  });
  for (std::size_t i = 0; i < pieces.size();) {
    const SplitPiece joined = JoinedFrom(pieces, i, LongestOf(frame));
    if (Tells(joined.Whole, frame, joined.Parts > 1 ? kJoint : kDamagedOnce)) ++telling;
    i += joined.Parts;
  }
  return telling;
}

}  // namespace keplo::robust
