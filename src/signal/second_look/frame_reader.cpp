#include "signal/second_look/frame_reader.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "signal/timing.h"

namespace keplo::robust {

namespace {

constexpr double kRestUnits = 12;  // after a frame; two marks that are lost between long spaces leave 11
constexpr double kSonyRest = 8;    // its spaces are short: two lost marks leave 7, and the longest code 10
constexpr std::size_t kShortestPiece = 7;  // marks; shorter ones are no commands
constexpr std::size_t kMostRuns = 600;     // of one frame; more is noise

/// The lengths are clean, but are not those of the line codes. One length of both is a mere pulse train, and
/// runs that the first analysis takes for borders are where two signals met.
bool IsCleanButUnknown(const Body& body) {
  if (body.MarkCount() < kFewestMarks || !body.LengthsAreDistinct() || body.HasLengths(1, 1)) return false;
  const int unit = static_cast<int>(RoughUnit(body.First, body.Size));
  return RunUnits(std::max(body.Marks.Longest().Most, body.Spaces.Longest().Most), unit) <= 3;
}

bool IsDitto(const Piece& piece) {
  if (piece.Size != 3) return false;
  const double leader = piece.First[0];
  return leader >= 8 * piece.First[2] && Within(piece.First[1] / leader, 0.18, 0.34);
}

class FrameReader {
 public:
  explicit FrameReader(const std::vector<Piece>& pieces) : pieces_(pieces) {}

  Findings ReadAll() {
    for (place_ = 0; place_ < pieces_.size(); ++place_) {
      const Piece& piece = pieces_[place_];
      if (IsDitto(piece)) {
        if (afterFrame_) ++found_.Frames.back().Dittos;
        continue;
      }
      afterFrame_ = false;
      const bool fits = piece.Size / 2 + 1 >= kShortestPiece && piece.Size <= kMostRuns;
      std::optional<Frame> frame = fits ? Read(piece) : std::nullopt;
      if (!frame) {
        ++found_.Others;
        continue;
      }
      if (frame->HasLeader() && SingleLeader()) --found_.Others;
      frame->Ends = place_ + 1 == pieces_.size() ||
                    piece.After >= (frame->Kind == kSony ? kSonyRest : kRestUnits) * frame->Unit;
      afterFrame_ = true;
      found_.Frames.push_back(std::move(*frame));
    }
    return std::move(found_);
  }

 private:
  /// A single mark stands right in front of its frame, not further off than it is long.
  std::optional<Leader> SingleLeader() const {
    if (place_ == 0) return std::nullopt;
    const Piece& before = pieces_[place_ - 1];
    if (!before.IsSingle() || before.After > 1.3 * before.First[0]) return std::nullopt;
    return Leader{before.First[0], before.After};
  }

  std::optional<Frame> Read(const Piece& piece) {
    const std::optional<Leader> single = SingleLeader();
    const bool inside = !single && HasLeaderInside(piece);
    if (inside) {
      const Body body = BodyOf(piece, 2);
      const bool cut = IsCutOff(piece, body);
      if (auto frame = cut ? std::nullopt : FrameOf(body, Leader{piece.First[0], piece.First[1]}))
        return frame;
    }
    const Body body = BodyOf(piece, 0);
    if (IsCutOff(piece, body)) return std::nullopt;
    std::optional<Frame> frame = FrameOf(body, single);
    if (!frame) TakeUnread(piece, inside ? BodyOf(piece, 2) : body);
    return frame;
  }

  void TakeUnread(const Piece& piece, const Body& body) {
    found_.MostUnread = std::max(found_.MostUnread, body.Size);
    if (!body.LengthsAreDistinct()) found_.Stray = true;
    if (IsCleanButUnknown(body)) found_.Unknown.push_back(piece);
  }

  /// Whether the first mark of a piece stands well above the others.
  static bool HasLeaderInside(const Piece& piece) {
    if (piece.Size < 5) return false;
    int longest = 0;
    for (std::size_t i = 2; i < piece.Size; i += 2) longest = std::max(longest, piece.First[i]);
    return piece.First[0] >= kLeaderOverMarks * longest;
  }

  /// Whether the capture may have ended within the frame.
  static bool IsCutOff(const Piece& piece, const Body& body) {
    const double longest = body.Spaces.Number > 0 ? body.Spaces.Longest().Most : 0;
    return piece.After < 1.25 * longest + 2;
  }

  const std::vector<Piece>& pieces_;
  std::size_t place_ = 0;
  bool afterFrame_ = false;  // only dittos stand between the last frame and this place
  Findings found_;
};

/// A piece without a leader among frames with one is what is left of such a frame, or follows it without one
/// of its own; by itself it proves nothing.
void LeaveOutPieces(Findings& found) {
  std::vector<Frame>& frames = found.Frames;
  const std::size_t before = frames.size();
  const auto hasLeader = [](const Frame& frame) { return frame.HasLeader(); };
  if (std::none_of(frames.begin(), frames.end(), hasLeader)) return;
  frames.erase(std::remove_if(frames.begin(), frames.end(),
                              [&](const Frame& frame) {
                                return !frame.HasLeader() && frame.Kind != kRc5 &&
                                       std::none_of(frames.begin(), frames.end(), [&](const Frame& other) {
                                         return other.HasLeader() && other.SameCode(frame);
                                       });
                              }),
               frames.end());
  found.Others += before - frames.size();
}

}  // namespace

Findings ReadFrames(const RunList& runs) {
  const std::vector<Piece> pieces = SplitPieces(runs);
  Findings found = FrameReader(pieces).ReadAll();
  LeaveOutPieces(found);
  return found;
}

}  // namespace keplo::robust
