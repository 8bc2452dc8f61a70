#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "signal/second_look/body.h"
#include "signal/second_look/frame.h"

namespace keplo::robust {

/// A piece that is no frame.
struct OtherPiece {
  Piece Of;
  bool IsCut = false;    // by the end of the capture
  bool IsClean = false;  // its runs fall into lengths; told beside frames only
};

/// Everything that was found in a capture.
struct Findings {
  std::vector<Frame> Frames;
  std::vector<Piece> Unknown;    // whole and clean, but of none of the line codes
  std::size_t UnknownMarks = 0;  // in the first of them, after its leader; 0 without one
  std::size_t MostUnread = 0;  // runs of the longest piece that is neither read nor cut by the capture's end
  bool Stray = false;  // some piece has runs of no clear lengths, which puts its neighbours in doubt too
  std::vector<OtherPiece> Others;  // neither frame nor ditto nor the leader of a frame
};

/// Whether the first mark of a piece stands well above the others.
bool HasLeaderInside(const Piece& piece);

/// Whether a piece is a single mark that stands well above those of the next piece, and right in front of it.
bool LeadsFrame(const Piece& before, const Piece& piece);

/// Reads the frames of captures; reuses its buffers from one to the next.
class FrameReader {
 public:
  /// @param runs must outlive the findings
  /// @param unit of the runs, as RoughLengths has it
  /// @return valid until the next call
  const Findings& Read(const PressRuns& runs, double unit);

  BodyReader& Bodies() { return bodies_; }

 private:
  void ReadPieces();
  /// @param piece that begins with the leader
  Leader LeaderOf(const Piece& piece, int space) const;
  std::optional<Leader> SingleLeader() const;
  bool MayLackFront(const Frame& frame) const;
  std::optional<Frame> ReadPiece(const Piece& piece);
  std::optional<Frame> ReadBody(const Body& body, const std::optional<Leader>& leader);
  void TakeUnread(const Piece& piece, const Body& body, bool hasLeader);
  std::size_t PiecesOfHeldSign() const;
  void TakeOther(const Piece& piece);
  void MeasureOthers();
  void WriteSymbols(Frame& frame, const Body& body);
  void LeaveOutPieces();

  BodyReader bodies_;
  std::vector<Piece> pieces_;
  double unit_ = 0;  // of the press
  std::size_t place_ = 0;
  bool afterFrame_ = false;  // only dittos stand between the last frame and this place
  std::string symbols_;      // of all frames
  std::size_t written_ = 0;  // of the symbols
  Findings found_;
};

}  // namespace keplo::robust
