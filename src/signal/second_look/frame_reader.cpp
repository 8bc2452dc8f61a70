#include "signal/second_look/frame_reader.h"

#include <algorithm>
#include <cstring>

#include "signal/second_look/line_shapes.h"
#include "signal/timing.h"

namespace keplo::robust {

namespace {

constexpr std::size_t kShortestPiece = 7;  // marks; shorter ones are no commands
constexpr std::size_t kMostRuns = 600;     // of one frame; more is noise

/// The lengths are clean, but are not those of the line codes. One length of both is a mere pulse train, and
/// runs that the first analysis takes for borders are where two signals met.
bool IsCleanButUnknown(const Body& body) {
  if (body.MarkCount() < kFewestMarks || !body.LengthsAreDistinct() || body.HasLengths(1, 1)) return false;
  const int longest = std::max(body.Marks.Longest().Most, body.Spaces.Longest().Most);
  return RunUnits(longest, static_cast<int>(body.Unit)) <= 3;
}

bool IsDitto(const Piece& piece) {
  if (piece.Size != 3) return false;
  const double leader = piece.First[0];
  return leader >= 8 * piece.First[2] && Within(piece.First[1] / leader, 0.18, 0.34);
}

/// Whether the first mark of a piece stands well above the others.
bool HasLeaderInside(const Piece& piece) {
  if (piece.Size < 5) return false;
  int longest = 0;
  for (std::size_t i = 2; i < piece.Size; i += 2) longest = std::max(longest, piece.First[i]);
  return piece.First[0] >= kLeaderOverMarks * longest;
}

/// Whether the capture may have ended within the frame.
bool IsCutOff(const Piece& piece, const Body& body) {
  const double longest = body.Spaces.Number > 0 ? body.Spaces.Longest().Most : 0;
  return piece.After < 1.25 * longest + 2;
}

}  // namespace

const Findings& FrameReader::Read(const PressRuns& runs, double unit) {
  SplitPieces(runs, unit, pieces_);
  // Frames point into the symbols, which must not move while they are read.
  const std::size_t most = RunText::kMost * (runs.Lengths.size() + 1);
  if (symbols_.size() < most) symbols_.resize(most);
  written_ = 0;
  found_.Frames.clear();
  found_.Unknown.clear();
  found_.MostUnread = 0;
  found_.Stray = false;
  found_.Others = 0;
  afterFrame_ = false;
  ReadPieces();
  LeaveOutPieces();
  return found_;
}

void FrameReader::ReadPieces() {
  for (place_ = 0; place_ < pieces_.size(); ++place_) {
    const Piece& piece = pieces_[place_];
    if (IsDitto(piece)) {
      if (afterFrame_) ++found_.Frames.back().Dittos;
      continue;
    }
    afterFrame_ = false;
    const bool fits = piece.Size / 2 + 1 >= kShortestPiece && piece.Size <= kMostRuns;
    std::optional<Frame> frame = fits ? ReadPiece(piece) : std::nullopt;
    if (!frame) {
      ++found_.Others;
      continue;
    }
    if (frame->HasLeader() && SingleLeader()) --found_.Others;
    const bool last = place_ + 1 == pieces_.size();
    frame->Ends = last || piece.After >= frame->Shape->RestUnits * frame->Unit;
    afterFrame_ = true;
    found_.Frames.push_back(*frame);
  }
}

/// A single mark stands right in front of its frame, not further off than it is long.
std::optional<Leader> FrameReader::SingleLeader() const {
  if (place_ == 0) return std::nullopt;
  const Piece& before = pieces_[place_ - 1];
  if (!before.IsSingle() || before.After > 1.3 * before.First[0]) return std::nullopt;
  return Leader{before.First[0], before.After};
}

std::optional<Frame> FrameReader::ReadPiece(const Piece& piece) {
  const std::optional<Leader> single = SingleLeader();
  std::optional<Body> inside;
  if (!single && HasLeaderInside(piece)) {
    inside = bodies_.Read(piece, 2);
    const bool cut = IsCutOff(piece, *inside);
    auto frame = cut ? std::nullopt : ReadBody(*inside, Leader{piece.First[0], piece.First[1]});
    if (frame) return frame;
  }
  const Body body = bodies_.Read(piece, 0);
  if (IsCutOff(piece, body)) return std::nullopt;
  std::optional<Frame> frame = ReadBody(body, single);
  if (!frame) TakeUnread(piece, inside.value_or(body));
  return frame;
}

std::optional<Frame> FrameReader::ReadBody(const Body& body, const std::optional<Leader>& leader) {
  std::optional<Frame> frame = FrameOf(body, leader);
  if (frame) WriteSymbols(*frame, body);
  return frame;
}

void FrameReader::TakeUnread(const Piece& piece, const Body& body) {
  found_.MostUnread = std::max(found_.MostUnread, body.Size);
  if (!body.LengthsAreDistinct()) found_.Stray = true;
  if (IsCleanButUnknown(body)) found_.Unknown.push_back(piece);
}

void FrameReader::WriteSymbols(Frame& frame, const Body& body) {
  const RunAlphabet& alphabet = *frame.Alphabet;
  char* const begin = symbols_.data() + written_;
  char* end = begin;
  const auto write = [&end](const RunText& text) {
    std::memcpy(end, text.Symbols.data(), RunText::kMost);
    end += text.Size;
  };
  for (std::size_t i = 0; i < body.Size; ++i) {
    const int run = body.First[i];
    if (i % 2 == 0) {
      write(body.Marks.IsLong(run) ? alphabet.LongMark : alphabet.ShortMark);
    } else {
      write(body.Spaces.IsLong(run) ? alphabet.LongSpace : alphabet.ShortSpace);
    }
  }
  frame.Symbols = {begin, static_cast<std::size_t>(end - begin)};
  written_ += frame.Symbols.size();
}

/// A piece without a leader among frames with one is what is left of such a frame, or follows it without one
/// of its own; by itself it proves nothing.
void FrameReader::LeaveOutPieces() {
  std::vector<Frame>& frames = found_.Frames;
  const std::size_t before = frames.size();
  const auto hasLeader = [](const Frame& frame) { return frame.HasLeader(); };
  if (std::none_of(frames.begin(), frames.end(), hasLeader)) return;
  const auto isPiece = [&](const Frame& frame) {
    return !frame.HasLeader() && frame.Shape->BeginsAtLeader &&
           std::none_of(frames.begin(), frames.end(),
                        [&](const Frame& other) { return other.HasLeader() && other.SameCode(frame); });
  };
  frames.erase(std::remove_if(frames.begin(), frames.end(), isPiece), frames.end());
  found_.Others += before - frames.size();
}

}  // namespace keplo::robust
