#include "signal/second_look/frame_reader.h"

#include <algorithm>
#include <cstring>

#include "signal/first_analysis.h"
#include "signal/held_signs.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

constexpr std::size_t kShortestPiece = 7;  // marks; shorter ones are no commands
constexpr double kOffLeader = 1.3;         // a leader's space, in lengths of its mark, at most

/// Whether the lengths are clean, but not those of a line code. One length of mark and one of space are a
/// mere pulse train; runs that the first analysis takes for borders show where two signals met.
bool IsCleanButUnknown(const Body& body) {
  if (body.MarkCount() < kFewestMarks || !body.LengthsAreDistinct() || body.HasLengths(1, 1)) return false;
  const int longest = std::max(body.Marks.Longest().Most, body.Spaces.Longest().Most);
  return RunUnits(longest, static_cast<int>(body.Unit)) <= 3;
}

/// Whether a piece has as many runs as RC6, whose leader may be as short as any run where the capture began
/// late.
bool MayBeginInLeader(const Piece& piece) {
  constexpr std::size_t kFewestRuns = 23, kMostRuns = 79;
  return Within(static_cast<double>(piece.Size), kFewestRuns, kMostRuns);
}

/// @return the place after the symbols written
char* WriteRuns(const RunAlphabet& alphabet, const Body& body, char* end) {
  // A processor cannot predict the order of digits, so that their texts are picked without a branch.
  const auto write = [&end](const RunText& text) {
    std::memcpy(end, text.Symbols.data(), RunText::kRoom);
    end += text.Size;
  };
  const int longMark = body.Marks.LeastLong(), longSpace = body.Spaces.LeastLong();
  for (std::size_t i = 0; i + 1 < body.Size; i += 2) {
    write(alphabet.Marks[body.First[i] >= longMark ? 1 : 0]);
    write(alphabet.Spaces[body.First[i + 1] >= longSpace ? 1 : 0]);
  }
  if (body.Size % 2 != 0) write(alphabet.Marks[body.First[body.Size - 1] >= longMark ? 1 : 0]);
  return end;
}

/// Writes a symbol for each base time. A shape that asks for it has made sure that a run has three at most.
/// @return the place after the symbols written
char* WriteHalves(const Frame& frame, const Body& body, char* end) {
  for (std::size_t i = 0; i < body.Size; ++i) {
    const bool mark = i % 2 == 0;
    end = std::fill_n(end, UnitsOf(body.First[i], mark ? frame.Excess : -frame.Excess, frame.Unit),
                      mark ? '1' : '0');
  }
  return end;
}

/// Whether the capture may have ended within the frame.
bool IsCutOff(const Piece& piece, const Body& body) {
  const double longest = body.Spaces.Number > 0 ? body.Spaces.Longest().Most : 0;
  return piece.After < 1.25 * longest + 2;
}

/// Whether a mark is one that could lead the runs of a piece from one of its marks on.
bool StandsOut(int mark, const Piece& piece, std::size_t first) {
  for (std::size_t i = first; i < piece.Size; i += 2) {
    if (mark < kLeaderOverMarks * piece.First[i]) return false;
  }
  return true;
}

}  // namespace

bool HasLeaderInside(const Piece& piece) { return piece.Size >= 5 && StandsOut(piece.First[0], piece, 2); }

bool LeadsFrame(const Piece& before, const Piece& piece) {
  return before.IsSingle() && before.After <= kOffLeader * before.First[0] &&
         StandsOut(before.First[0], piece, 0);
}

const Findings& FrameReader::Read(const PressRuns& runs, double unit) {
  SplitPieces(runs, unit, pieces_);
  unit_ = unit;
  // Frames point into the symbols, which must not move while they are read.
  const std::size_t most = RunText::kRoom * (runs.Lengths.size() + 1);
  if (symbols_.size() < most) symbols_.resize(most);
  written_ = 0;
  found_.Frames.clear();
  found_.Unknown.clear();
  found_.UnknownMarks = 0;
  found_.MostUnread = 0;
  found_.Stray = false;
  found_.Others.clear();
  afterFrame_ = false;
  ReadPieces();
  MeasureOthers();
  LeaveOutPieces();
  return found_;
}

void FrameReader::ReadPieces() {
  for (place_ = 0; place_ < pieces_.size(); ++place_) {
    const Piece& piece = pieces_[place_];
    if (piece.Size == 3 && IsDitto(piece.First[0], piece.First[1], piece.First[2])) {
      if (!afterFrame_) continue;
      ++found_.Frames.back().Dittos;
      found_.Frames.back().HeldOn = true;
      continue;
    }
    if (const std::size_t pieces = afterFrame_ ? PiecesOfHeldSign() : 0; pieces > 0) {
      found_.Frames.back().HeldOn = true;
      place_ += pieces - 1;
      continue;
    }
    afterFrame_ = false;
    const bool fits = piece.Size / 2 + 1 >= kShortestPiece && piece.Size <= kMostRuns;
    std::optional<Frame> frame = fits ? ReadPiece(piece) : std::nullopt;
    if (!frame || (!frame->HasLeader() && MayLackFront(*frame))) {
      TakeOther(piece);
      continue;
    }
    const bool ledByPiece = frame->HasLeader() && frame->First == piece.First;
    if (ledByPiece) found_.Others.pop_back();
    const bool last = place_ + 1 == pieces_.size();
    frame->Ends = last || piece.After >= frame->Shape->RestUnits * frame->Unit;
    frame->After = piece.After;
    frame->ThenLeader = last || pieces_[place_ + 1].IsSingle() || HasLeaderInside(pieces_[place_ + 1]);
    afterFrame_ = true;
    found_.Frames.push_back(*frame);
  }
}

/// How many pieces make up a sign of the last frame here; 0 if there is none. Its space may be long enough to
/// split it in two.
std::size_t FrameReader::PiecesOfHeldSign() const {
  const Piece& piece = pieces_[place_];
  const int* const runs = piece.First;
  const int usual = found_.Frames.back().Led.Mark;
  if (piece.Size == 3) return IsHeldSign(runs[0], runs[1], runs[2], usual) ? 1 : 0;
  if (!piece.IsSingle() || place_ + 1 == pieces_.size() || !pieces_[place_ + 1].IsSingle()) return 0;
  return IsHeldSign(runs[0], piece.After, pieces_[place_ + 1].First[0], usual) ? 2 : 0;
}

void FrameReader::TakeOther(const Piece& piece) {
  if (piece.Size > kMostRuns) return found_.Others.push_back({piece});
  // The space after a leader may be longer than one that parts frames.
  const double rest = piece.IsSingle() ? kOffLeader * piece.First[0] : kGapUnits * unit_;
  const bool cut = place_ + 1 == pieces_.size() && piece.After <= rest;
  if (cut && SingleLeader()) found_.Others.pop_back();
  found_.Others.push_back({piece, cut});
}

/// Noise has many pieces and no frame, so they are only measured beside a frame.
void FrameReader::MeasureOthers() {
  if (found_.Frames.empty()) return;
  for (OtherPiece& other : found_.Others) {
    const Piece& piece = other.Of;
    if (piece.Size > kMostRuns) continue;
    other.IsClean = bodies_.Read(piece, HasLeaderInside(piece) ? 2 : 0).LengthsAreDistinct();
  }
}

/// A line that is looked at now and then begins a capture up to 2 ms after the first edge.
Leader FrameReader::LeaderOf(const Piece& piece, int space) const {
  constexpr double kLateCapture = 2200;  // microseconds
  const bool first = piece.First == pieces_.front().First;
  return {piece.First[0], space, first ? static_cast<int>(kLateCapture / bodies_.SampleTime()) : 0};
}

/// A single mark stands right in front of its frame, not further off than it is long.
std::optional<Leader> FrameReader::SingleLeader() const {
  if (place_ == 0) return std::nullopt;
  const Piece& before = pieces_[place_ - 1];
  if (!before.IsSingle()) return std::nullopt;
  const Leader leader = LeaderOf(before, before.After);
  return leader.MarkIsWithin(0, before.After / kOffLeader, before.First[0]) ? std::optional(leader)
                                                                            : std::nullopt;
}

/// Whether a frame without a leader may lack its front: the front is ahead of it, as of a frame that lost
/// marks, or a long mark is, too far away to be its leader.
bool FrameReader::MayLackFront(const Frame& frame) const {
  if (place_ == 0 || !frame.Shape->BeginsAtLeader) return false;
  const Piece& piece = pieces_[place_];
  const Piece& last = pieces_[place_ - 1];
  if (last.IsSingle() && StandsOut(last.First[0], piece, 0)) return true;
  if (!frame.Shape->HalvesLookWhole) return false;
  for (std::size_t place = place_; place > 0; --place) {
    const Piece& before = pieces_[place - 1];
    if (before.After >= frame.Shape->RestUnits * frame.Unit) return false;
    if (StandsOut(before.First[0], piece, 0)) return true;
    if (before.Size / 2 + 1 >= kShortestPiece) return false;
  }
  return false;
}

std::optional<Frame> FrameReader::ReadPiece(const Piece& piece) {
  const std::optional<Leader> single = SingleLeader();
  std::optional<Body> inside;
  if (!single && HasLeaderInside(piece)) {
    inside = bodies_.Read(piece, 2);
    const bool cut = IsCutOff(piece, *inside);
    auto frame = cut ? std::nullopt : ReadBody(*inside, LeaderOf(piece, piece.First[1]));
    if (frame) return frame;
  }
  if (place_ == 0 && !inside && MayBeginInLeader(piece)) {
    const Body late = bodies_.Read(piece, 2);
    if (auto frame = IsCutOff(piece, late) ? std::nullopt : ReadBody(late, LeaderOf(piece, piece.First[1])))
      return frame;
  }
  const Body body = bodies_.Read(piece, 0);
  if (IsCutOff(piece, body)) return std::nullopt;
  std::optional<Frame> frame = ReadBody(body, single);
  if (!frame) TakeUnread(piece, inside.value_or(body), single || inside);
  return frame;
}

std::optional<Frame> FrameReader::ReadBody(const Body& body, const std::optional<Leader>& leader) {
  std::optional<Frame> frame = FrameOf(body, leader);
  if (frame) WriteSymbols(*frame, body);
  return frame;
}

void FrameReader::TakeUnread(const Piece& piece, const Body& body, bool hasLeader) {
  found_.MostUnread = std::max(found_.MostUnread, body.Size);
  if (!body.LengthsAreDistinct()) found_.Stray = true;
  if (!IsCleanButUnknown(body)) return;
  if (found_.Unknown.empty() && hasLeader) found_.UnknownMarks = body.MarkCount();
  found_.Unknown.push_back(piece);
}

void FrameReader::WriteSymbols(Frame& frame, const Body& body) {
  char* const begin = symbols_.data() + written_;
  char* const end =
      frame.Alphabet != nullptr ? WriteRuns(*frame.Alphabet, body, begin) : WriteHalves(frame, body, begin);
  frame.Symbols = {begin, static_cast<std::size_t>(end - begin)};
  written_ += frame.Symbols.size();
}

/// A frame without a leader among frames with one may be what is left of such a frame. It only counts if one
/// with the same digits came before it.
void FrameReader::LeaveOutPieces() {
  std::vector<Frame>& frames = found_.Frames;
  const auto hasLeader = [](const Frame& frame) { return frame.HasLeader(); };
  const auto led = std::count_if(frames.begin(), frames.end(), hasLeader);
  if (led == 0 || led == std::ssize(frames)) return;
  auto kept = frames.begin();
  for (const Frame& frame : frames) {
    const auto isSame = [&](const Frame& before) { return before.HasLeader() && before.SameCode(frame); };
    if (frame.HasLeader() || !frame.Shape->BeginsAtLeader || std::any_of(frames.begin(), kept, isSame)) {
      *kept++ = frame;
    } else {
      found_.Others.push_back({{frame.First, frame.Runs, 0}, false, true});
    }
  }
  frames.erase(kept, frames.end());
}

}  // namespace keplo::robust
