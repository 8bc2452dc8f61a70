#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "signal/second_look/length_groups.h"
#include "signal/second_look/runs.h"
#include "signal/timing.h"

namespace keplo::robust {

inline constexpr double kLeaderOverMarks =
    1.4;  // SONY: 4 to 2 base times, with 300 us of mark excess still 1.7
inline constexpr std::size_t kFewestMarks = 12;  // of a clean signal, not of noise

/// A leader in front of a frame, samples.
struct Leader {
  int Mark = 0, Space = 0;
};

/// One whole frame.
struct Frame {
  std::int16_t Kind = kNec;
  double Unit = 0;      // base time, samples
  double Excess = 0;    // by which marks are longer and spaces shorter than whole base times, samples
  std::string Head;     // symbols of the leader; empty without one
  std::string Symbols;  // between the marks
  std::size_t Digits = 0;
  std::size_t Runs = 0;      // without the leader
  bool Clear = false;        // no run is anywhere near the middle between two lengths
  bool KnownLeader = false;  // that of a common protocol: of SONY for pulse width, of NEC and its kin
  bool Ends = true;          // the signal ends after it, or rests for longer than lost marks would make it
  int Dittos = 0;            // right after it: NEC's sign that the key is still held

  bool HasLeader() const { return !Head.empty(); }
  /// Some remotes send the leader with the first frame only.
  bool SameCode(const Frame& other) const {
    const bool sameHead = Head == other.Head || Head.empty() || other.Head.empty();
    return Kind == other.Kind && Symbols == other.Symbols && sameHead;
  }
};

/// The runs of a piece without those of its leader, and what lengths they fall into.
struct Body {
  const int* First = nullptr;
  std::size_t Size = 0;
  Lengths Marks, Spaces;

  std::size_t MarkCount() const { return Size / 2 + 1; }
  /// Length of a mark and a space of one base time each, which has no excess.
  double ShortestPair() const { return Marks.Short().Mean + Spaces.Short().Mean; }
  bool LengthsAreDistinct() const { return Marks.Number > 0 && Spaces.Number > 0; }
  bool HasLengths(std::size_t marks, std::size_t spaces) const {
    return Marks.Number == marks && Spaces.Number == spaces;
  }
};

/// @param skipped runs of a leader at the head of the piece
Body BodyOf(const Piece& piece, std::size_t skipped);

/// The frame of a body, if its runs fall into the lengths of one of the line codes.
/// @param leader the one in front of the body; without one pulse distance and width need two lengths
std::optional<Frame> FrameOf(const Body& body, const std::optional<Leader>& leader);

}  // namespace keplo::robust
