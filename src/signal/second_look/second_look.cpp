#include "signal/second_look/second_look.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "signal/code_values.h"
#include "signal/decode.h"

namespace keplo {

namespace {

constexpr int kInterference = 2;     // samples; shorter runs than three belong to what surrounds them
constexpr double kLeastUnit = 5;     // samples; of a shorter base time receivers leave spaces of one or two
constexpr double kFinestUnit = 3.5;  // samples; of shorter ones the first analysis reads wrong codes
constexpr double kGapUnits = 5.5;    // longer spaces part frames; within a frame four base times occur
constexpr double kRestUnits = 12;    // behind a frame; two marks that are lost between long spaces leave 11
constexpr double kSonyRest = 8;      // its spaces are short: two lost marks leave 7, and the longest code 10
constexpr std::size_t kShortestPiece = 7;  // marks; shorter ones are no commands
constexpr std::size_t kMostRuns = 600;     // of one frame; more is noise
constexpr double kStepUnits = 0.35;   // between runs of two lengths, which are one base time apart or more
constexpr double kSpreadUnits = 0.7;  // between runs of one length: 50 us of jitter and the sample grid
constexpr double kClearSteps = 0.4;   // of the way between two lengths that has no run, with 25 us
constexpr double kLeaderUnits = 2.7;  // SONY's leader has 4, the double mark of biphase 2
constexpr double kLeaderOverMarks = 1.4;  // SONY: 4 to 2 base times, with 300 us of mark excess still 1.7

/// The runs of a capture: marks and spaces in turn, from the first mark to the last.
struct RunList {
  std::vector<int> Lengths;
  int Silence = 0;  // samples behind the last mark; 0 if the capture ends in it
};

/// @param interferenceLimit runs of up to so many samples join what surrounds them
RunList ReadRuns(std::string_view samples, int interferenceLimit = kInterference) {
  RunList runs;
  runs.Lengths.reserve(256);
  std::size_t offset = 0;
  bool inMark = false;
  while (offset < samples.size()) {
    const bool mark = samples[offset] == '1';
    const auto length = static_cast<int>(RunLength(samples, offset, mark ? '1' : '0'));
    offset += static_cast<std::size_t>(length);
    const bool interference = length <= interferenceLimit;
    if (runs.Lengths.empty() && (!mark || interference)) continue;
    if (!runs.Lengths.empty() && (interference || mark == inMark)) {
      runs.Lengths.back() += length;
    } else {
      runs.Lengths.push_back(length);
      inMark = mark;
    }
  }
  if (!runs.Lengths.empty() && !inMark) {
    runs.Silence = runs.Lengths.back();
    runs.Lengths.pop_back();
  }
  return runs;
}

/// A quarter of the runs at every second place are no longer than this.
int LowerQuartile(const int* runs, std::size_t size, std::size_t first) {
  std::array<int, 256> counts{};
  int all = 0;
  for (std::size_t i = first; i < size; i += 2, ++all) {
    ++counts.at(std::min<std::size_t>(static_cast<std::size_t>(runs[i]), counts.size() - 1));
  }
  int seen = 0;
  for (std::size_t length = 0; length < counts.size(); ++length) {
    seen += counts.at(length);
    if (seen * 4 > all) return static_cast<int>(length);
  }
  return 0;
}

/// About one base time, samples; up to two where the longer runs are the commoner by far.
double RoughUnit(const int* runs, std::size_t size) {
  return (LowerQuartile(runs, size, 0) + LowerQuartile(runs, size, 1)) / 2.0;
}

/// What stands between two long spaces.
struct Piece {
  const int* First = nullptr;  // marks and spaces in turn, a mark at both ends
  std::size_t Size = 0;
  int Behind = 0;  // the space behind, samples

  bool Lone() const { return Size == 1; }
};

std::vector<Piece> SplitPieces(const RunList& runs) {
  std::vector<Piece> pieces;
  const std::vector<int>& lengths = runs.Lengths;
  const double gap = kGapUnits * RoughUnit(lengths.data(), lengths.size());
  std::size_t first = 0;
  for (std::size_t i = 1; i < lengths.size(); i += 2) {
    if (lengths[i] <= gap) continue;
    pieces.push_back({&lengths[first], i - first, lengths[i]});
    first = i + 1;
  }
  if (!lengths.empty()) pieces.push_back({&lengths[first], lengths.size() - first, runs.Silence});
  return pieces;
}

/// Runs of about one length.
struct Length {
  int Least = 0, Most = 0;
  double Mean = 0;
};

/// The lengths into which the marks or the spaces of a frame fall, the shortest first.
struct Lengths {
  static constexpr std::size_t kMost = 4;
  std::array<Length, kMost> Of{};
  std::size_t Number = 0;  // 0: no tight groups

  const Length& Short() const { return Of[0]; }
  const Length& Long() const { return Of[1]; }
  const Length& Longest() const { return Of.at(Number - 1); }
  bool IsLong(int run) const { return Number == 2 && 2 * run > Short().Most + Long().Least; }
};

/// Jitter of an edge, 25 us in bad remotes, and the sample grid spread equal runs over five samples.
bool IsTight(const Length& length, double unit) {
  const double spread = length.Most - length.Least;
  return spread <= std::max({5.0, kSpreadUnits * std::min(unit, length.Mean), 0.35 * length.Mean});
}

Length LengthOfSorted(const std::vector<int>& sorted, std::size_t begin, std::size_t end) {
  const double sum = std::accumulate(sorted.begin() + static_cast<std::ptrdiff_t>(begin),
                                     sorted.begin() + static_cast<std::ptrdiff_t>(end), 0.0);
  return {sorted[begin], sorted[end - 1], sum / static_cast<double>(end - begin)};
}

/// Splits runs where the next longer one is a good part of a base time longer.
/// @param unit base time, samples; roughly
Lengths GroupRuns(std::vector<int>& runs, double unit) {
  Lengths lengths;
  if (runs.empty()) return lengths;
  std::sort(runs.begin(), runs.end());
  const double step = std::max(3.0, kStepUnits * unit);
  std::size_t begin = 0;
  for (std::size_t i = 1; i <= runs.size(); ++i) {
    if (i < runs.size() && runs[i] - runs[i - 1] < step) continue;
    const Length length = LengthOfSorted(runs, begin, i);
    if (lengths.Number == Lengths::kMost || !IsTight(length, unit)) return {};
    lengths.Of.at(lengths.Number++) = length;
    begin = i;
  }
  return lengths;
}

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
  bool Ends = true;          // the signal ends behind it, or rests for longer than lost marks would make it
  int Dittos = 0;            // right behind it: NEC's sign that the key is still held

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
  bool IsTight() const { return Marks.Number > 0 && Spaces.Number > 0; }
  bool Falls(std::size_t marks, std::size_t spaces) const {
    return Marks.Number == marks && Spaces.Number == spaces;
  }
};

Body BodyOf(const Piece& piece, std::size_t skipped) {
  Body body{piece.First + skipped, piece.Size - skipped, {}, {}};
  std::vector<int> marks;
  std::vector<int> spaces;
  marks.reserve(body.MarkCount());
  spaces.reserve(body.MarkCount());
  for (std::size_t i = 0; i < body.Size; ++i) (i % 2 == 0 ? marks : spaces).push_back(body.First[i]);
  const double unit = RoughUnit(body.First, body.Size);
  body.Marks = GroupRuns(marks, unit);
  body.Spaces = GroupRuns(spaces, unit);
  return body;
}

/// From the shorter of two lengths to the longer, samples; free of excess.
double Step(const Lengths& lengths) { return lengths.Long().Mean - lengths.Short().Mean; }

/// Whether nothing strays anywhere near the middle between the two lengths.
bool IsClear(const Lengths& lengths) {
  return lengths.Number == 1 || lengths.Long().Least - lengths.Short().Most >= kClearSteps * Step(lengths);
}

constexpr bool Within(double value, double least, double most) { return value >= least && value <= most; }

/// Symbols of a short and a long mark, and of a short and a long space.
using RunSymbolSet = std::array<std::string_view, 4>;

constexpr RunSymbolSet kDistanceSymbols = {"1", "1", "0", "000"};
constexpr RunSymbolSet kWidthSymbols = {"1", "11", "0", "0"};
constexpr RunSymbolSet kBiphaseSymbols = {"1", "11", "0", "00"};
constexpr std::size_t kBiphaseDigits = 14;

std::string SymbolsOf(const Body& body, const RunSymbolSet& symbols) {
  std::string text;
  text.reserve(body.Size * 2);
  for (std::size_t i = 0; i < body.Size; ++i) {
    const bool mark = i % 2 == 0;
    const bool isLong = (mark ? body.Marks : body.Spaces).IsLong(body.First[i]);
    text += symbols.at((mark ? 0U : 2U) + (isLong ? 1U : 0U));
  }
  return text;
}

/// A pulse-distance frame of a body whose runs stand for these symbols.
Frame DistanceFrame(const Body& body, double unit, const RunSymbolSet& symbols = kDistanceSymbols) {
  Frame frame;
  frame.Kind = kNec;
  frame.Unit = unit;
  frame.Excess = body.Marks.Short().Mean - unit;
  frame.Symbols = SymbolsOf(body, symbols);
  frame.Digits = body.MarkCount() - 1;
  frame.Clear = IsClear(body.Spaces);
  return frame;
}

/// The same of pulse width.
Frame WidthFrame(const Body& body, double unit, const RunSymbolSet& symbols = kWidthSymbols) {
  Frame frame;
  frame.Kind = kSony;
  frame.Unit = unit;
  frame.Excess = unit - body.Spaces.Short().Mean;
  frame.Symbols = SymbolsOf(body, symbols);
  frame.Digits = body.MarkCount();
  frame.Clear = IsClear(body.Marks);
  return frame;
}

/// A frame of two lengths of mark or of space, and one of the other.
std::optional<Frame> TwoLengths(const Body& body) {
  const double unit = body.ShortestPair() / 2;
  if (body.Falls(1, 2) && Within(Step(body.Spaces) / unit, 0.7, 3.6)) return DistanceFrame(body, unit);
  if (body.Falls(2, 1) && Within(Step(body.Marks) / unit, 0.7, 3.0)) return WidthFrame(body, unit);
  return std::nullopt;
}

/// A pulse-width frame of equal digits. The leader tells them, since its mark has as much excess as theirs.
std::optional<Frame> EqualWidths(const Body& body, const Leader& leader) {
  const double mark = body.Marks.Short().Mean;
  const double space = body.Spaces.Short().Mean;
  // SONY: three base times to two for zeros, two to three for ones; 1 to 2 is what biphase may begin with.
  const double ratio = (leader.Mark - mark) / (mark + space);
  if (Within(ratio, 1.25, 1.75) && mark < 2 * space) return WidthFrame(body, (mark + space) / 2);
  if (Within(ratio, 0.6, 0.76) && mark > 1.2 * space) {
    return WidthFrame(body, (mark + space) / 3, {"11", "11", "0", "0"});
  }
  return std::nullopt;
}

/// A pulse-distance frame of equal digits: the space is one base time or three.
std::optional<Frame> EqualDistances(const Body& body) {
  const double mark = body.Marks.Short().Mean;
  const double space = body.Spaces.Short().Mean;
  if (space < 1.5 * mark) return DistanceFrame(body, (mark + space) / 2);
  if (space > 1.75 * mark) return DistanceFrame(body, (mark + space) / 4, {"1", "1", "000", "000"});
  return std::nullopt;
}

/// Whether the leader space is longer than any space of the frame. If not, nothing tells it from a digit's.
bool StandsOut(const Leader& leader, const Body& body) {
  const Length& longest = body.Spaces.Longest();
  return leader.Space >= 1.25 * longest.Mean && leader.Space >= longest.Most + 3;
}

/// Leaders of the common protocols, base times: SONY 4 and 1; NEC and its kin 16 or 8, and 8 or 4.
bool IsKnownLeader(const Frame& frame, const Leader& leader) {
  const double mark = (leader.Mark - frame.Excess) / frame.Unit;
  const double space = (leader.Space + frame.Excess) / frame.Unit;
  if (frame.Kind == kSony) return Within(mark, 3.2, 4.8) && space < 2;
  return (Within(mark, 7, 9.2) || Within(mark, 14, 18.4)) &&
         (Within(space, 3.4, 4.6) || Within(space, 7, 9.2)) && std::abs(frame.Excess) < 0.65 * frame.Unit;
}

/// Symbols of a pulse-distance leader. RunUnits writes a leader space of up to three base times as spaces,
/// which read as a digit; codes that were learned have it.
std::string DistanceHead(const Leader& leader, const Frame& frame, bool standsOut) {
  const auto units = std::lround((leader.Space + frame.Excess) / frame.Unit);
  if (units <= 1) return "G0";
  return units <= 3 || !standsOut ? "G000" : "Gg";
}

std::optional<Frame> FrameBehind(const Leader& leader, const Body& body) {
  if (leader.Mark < kLeaderOverMarks * body.Marks.Longest().Most) return std::nullopt;
  const bool standsOut = StandsOut(leader, body);
  std::optional<Frame> frame = !body.Falls(1, 1) ? TwoLengths(body)
                               : standsOut       ? EqualDistances(body)
                                                 : EqualWidths(body, leader);
  if (!frame || leader.Mark - frame->Excess < kLeaderUnits * frame->Unit) return std::nullopt;
  frame->KnownLeader = IsKnownLeader(*frame, leader);
  const bool distance = frame->Kind == kNec;
  frame->Head = distance ? DistanceHead(leader, *frame, standsOut) : standsOut ? "Gg" : "G0";
  if (distance && frame->Head != "Gg") ++frame->Digits;
  return frame;
}

/// Marks and spaces of one and two base times in whole pairs of half bits.
std::optional<Frame> BiphaseFrame(const Body& body) {
  if (!body.Falls(2, 2) && !body.Falls(2, 1)) return std::nullopt;
  const double unit = body.ShortestPair() / 2;
  if (!Within(Step(body.Marks) / unit, 0.75, 1.25)) return std::nullopt;
  if (body.Spaces.Number == 2 && !Within(Step(body.Spaces) / unit, 0.75, 1.25)) return std::nullopt;
  Frame frame;
  frame.Kind = kRc5;
  frame.Unit = unit;
  frame.Clear = IsClear(body.Marks) && IsClear(body.Spaces);
  frame.Symbols = SymbolsOf(body, kBiphaseSymbols);
  frame.Digits = DecodeCode(frame.Symbols, kRc5).size();
  if (frame.Digits != kBiphaseDigits) return std::nullopt;
  return frame;
}

constexpr std::size_t kFewestMarks = 12;  // of a clean signal, not of noise

/// The lengths are clean, but are not those of the line codes. One length of both is a mere pulse train, and
/// runs that the first analysis takes for borders are where two signals met.
bool IsStrange(const Body& body) {
  if (body.MarkCount() < kFewestMarks || !body.IsTight() || body.Falls(1, 1)) return false;
  const int unit = static_cast<int>(RoughUnit(body.First, body.Size));
  return RunUnits(std::max(body.Marks.Longest().Most, body.Spaces.Longest().Most), unit) <= 3;
}

/// Whether the runs of every length are within three samples, and none is a mere sample: noise has such.
bool IsFineAndClean(const Lengths& lengths) {
  constexpr int kFineSpread = 3;
  const auto end = lengths.Of.begin() + static_cast<std::ptrdiff_t>(lengths.Number);
  return lengths.Number > 0 && lengths.Short().Least > 1 &&
         std::all_of(lengths.Of.begin(), end,
                     [](const Length& length) { return length.Most - length.Least <= kFineSpread; });
}

/// Whether a capture holds a clean signal whose short spaces would be taken for interference.
bool IsTooFine(std::string_view samples) {
  const RunList runs = ReadRuns(samples, 0);
  const double unit = RoughUnit(runs.Lengths.data(), runs.Lengths.size());
  if (!Within(unit, kFinestUnit, kLeastUnit + 1)) return false;
  const std::vector<Piece> pieces = SplitPieces(runs);
  return std::any_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
    const Body body = BodyOf(piece, 0);
    return body.MarkCount() >= kFewestMarks && IsFineAndClean(body.Marks) && IsFineAndClean(body.Spaces) &&
           !body.Falls(1, 1) && (unit < kLeastUnit || body.Spaces.Short().Least <= kInterference) &&
           body.Spaces.Short().Mean > kInterference + 0.5;
  });
}

bool IsDitto(const Piece& piece) {
  if (piece.Size != 3) return false;
  const double leader = piece.First[0];
  return leader >= 8 * piece.First[2] && Within(piece.First[1] / leader, 0.18, 0.34);
}

/// Whether two pieces are the same frame, sent twice.
bool IsRepeat(const Piece& one, const Piece& other) {
  constexpr int kSameRun = 3;  // samples
  return one.Size == other.Size && std::equal(one.First, one.First + one.Size, other.First,
                                              [](int a, int b) { return std::abs(a - b) <= kSameRun; });
}

/// Everything that was found in a capture.
struct Findings {
  std::vector<Frame> Frames;
  std::vector<Piece> Strange;  // whole and clean, but of none of the line codes
  std::size_t MostUnread = 0;  // runs of the longest piece that is neither read nor cut by the capture's end
  bool Stray = false;      // its runs fall into no lengths, so that those of its neighbours are in doubt too
  std::size_t Others = 0;  // pieces that are neither frame nor ditto nor the leader of a frame
};

class FrameReader {
 public:
  explicit FrameReader(const std::vector<Piece>& pieces) : pieces_(pieces) {}

  Findings ReadAll() {
    for (place_ = 0; place_ < pieces_.size(); ++place_) {
      const Piece& piece = pieces_[place_];
      if (IsDitto(piece)) {
        if (behindFrame_) ++found_.Frames.back().Dittos;
        continue;
      }
      behindFrame_ = false;
      const bool fits = piece.Size / 2 + 1 >= kShortestPiece && piece.Size <= kMostRuns;
      std::optional<Frame> frame = fits ? Read(piece) : std::nullopt;
      if (!frame) {
        ++found_.Others;
        continue;
      }
      if (frame->HasLeader() && LoneLeader()) --found_.Others;
      frame->Ends = place_ + 1 == pieces_.size() ||
                    piece.Behind >= (frame->Kind == kSony ? kSonyRest : kRestUnits) * frame->Unit;
      behindFrame_ = true;
      found_.Frames.push_back(std::move(*frame));
    }
    return std::move(found_);
  }

 private:
  /// A lone mark stands right in front of its frame, not further off than it is long.
  std::optional<Leader> LoneLeader() const {
    if (place_ == 0) return std::nullopt;
    const Piece& before = pieces_[place_ - 1];
    if (!before.Lone() || before.Behind > 1.3 * before.First[0]) return std::nullopt;
    return Leader{before.First[0], before.Behind};
  }

  std::optional<Frame> Read(const Piece& piece) {
    const std::optional<Leader> lone = LoneLeader();
    const bool inside = !lone && HasLeaderInside(piece);
    if (inside) {
      const Body body = BodyOf(piece, 2);
      const bool cut = CutBehind(piece, body);
      if (auto frame = cut ? std::nullopt : ReadBody(body, Leader{piece.First[0], piece.First[1]}))
        return frame;
    }
    const Body body = BodyOf(piece, 0);
    if (CutBehind(piece, body)) return std::nullopt;
    std::optional<Frame> frame = ReadBody(body, lone);
    if (!frame) TakeUnread(piece, inside ? BodyOf(piece, 2) : body);
    return frame;
  }

  static std::optional<Frame> ReadBody(const Body& body, const std::optional<Leader>& leader) {
    if (!body.IsTight()) return std::nullopt;
    std::optional<Frame> frame = leader ? FrameBehind(*leader, body) : BiphaseFrame(body);
    if (!frame && !leader) frame = TwoLengths(body);
    if (frame) frame->Runs = body.Size;
    return frame;
  }

  void TakeUnread(const Piece& piece, const Body& body) {
    found_.MostUnread = std::max(found_.MostUnread, body.Size);
    if (!body.IsTight()) found_.Stray = true;
    if (IsStrange(body)) found_.Strange.push_back(piece);
  }

  /// Whether the first mark of a piece stands well above the others.
  static bool HasLeaderInside(const Piece& piece) {
    if (piece.Size < 5) return false;
    int longest = 0;
    for (std::size_t i = 2; i < piece.Size; i += 2) longest = std::max(longest, piece.First[i]);
    return piece.First[0] >= kLeaderOverMarks * longest;
  }

  /// Whether the capture may have ended within the frame.
  static bool CutBehind(const Piece& piece, const Body& body) {
    const double longest = body.Spaces.Number > 0 ? body.Spaces.Longest().Most : 0;
    return piece.Behind < 1.25 * longest + 2;
  }

  const std::vector<Piece>& pieces_;
  std::size_t place_ = 0;
  bool behindFrame_ = false;  // only dittos stand between the last frame and this place
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

/// Whether the last of seven groups of four digits is the sum of the four groups ahead of it, as in frames of
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

/// The frame that the frames of one press prove: the one that is there twice, and longer than what differs or
/// such that it would do by itself.
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

/// Whether the only frame, and its dittos, are all there is of the press. Without a leader it may have lost
/// its head.
bool IsLone(const Findings& found) {
  return found.Frames.size() == 1 && found.Others == 0 && found.Frames.front().Clear &&
         found.Frames.front().Ends && found.Frames.front().HasLeader();
}

/// Whether the pieces are one frame, sent again and again.
bool IsOneFrame(const std::vector<Piece>& pieces) {
  return pieces.size() > 1 && std::all_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
           return IsRepeat(piece, pieces.front());
         });
}

/// Frames that take turns, as some remotes send a frame and its complement.
bool TakeTurns(const std::vector<Frame>& frames) {
  if (frames.size() < 3 || frames[0].SameCode(frames[1])) return false;
  for (std::size_t i = 2; i < frames.size(); ++i) {
    if (!frames[i].SameCode(frames[i - 2])) return false;
  }
  return true;
}

/// Frames without a mark of their own, which only the silence ahead of them shows.
bool LackLeaders(const std::vector<Frame>& frames) {
  return !frames.front().HasLeader() && frames.front().Kind != kRc5;
}

/// The frames of one kind as run symbols that begin at a mark.
std::string SymbolsOf(const std::vector<Frame>& frames, std::int16_t kind) {
  std::string symbols = "g";
  for (const Frame& frame : frames) {
    if (frame.Kind != kind) continue;
    symbols.append(frame.Head).append(frame.Symbols).append("g");
    for (int ditto = 0; ditto < frame.Dittos; ++ditto) symbols += "Gg1g";
  }
  // The silence ahead of a leader is no mark of the signal.
  if (symbols.substr(0, 2) == "gG") symbols.erase(0, 1);
  return symbols;
}

void ReadProof(const Findings& found, SecondLook& look) {
  const std::vector<Frame>& frames = found.Frames;
  const bool turns = LackLeaders(frames) && TakeTurns(frames);
  const Frame* proven = turns ? nullptr : ProvenFrame(found);
  const Frame& shown = proven != nullptr ? *proven : frames.front();
  look.BaseT = static_cast<std::int16_t>(std::lround(shown.Unit));
  look.ProtoKind = shown.Kind;
  if (turns) look.Proven = SecondLook::Proof::Unsure;
  if (proven != nullptr) look.Proven = SecondLook::Proof::Sure;
  const bool lone = proven == nullptr && IsLone(found);
  if (lone) look.Proven = SecondLook::Proof::Lone;
  if (proven != nullptr || lone) look.Frame = (shown.HasLeader() ? shown.Head : "g") + shown.Symbols + "g";
}

}  // namespace

SecondLook LookAgain(std::string_view samples) {
  const RunList runs = ReadRuns(samples);
  Findings found = FrameReader(SplitPieces(runs)).ReadAll();
  std::vector<Frame>& frames = found.Frames;
  LeaveOutPieces(found);
  SecondLook look;
  if (IsTooFine(samples)) {
    look.Proven = SecondLook::Proof::Unsure;
    return look;
  }
  if (frames.empty()) {
    if (IsOneFrame(found.Strange)) look.Proven = SecondLook::Proof::Unsure;
    return look;
  }
  ReadProof(found, look);
  // Of frames that take turns the first analysis knows those from the second one on.
  if (LackLeaders(frames) && (frames.size() == 1 || TakeTurns(frames))) frames.erase(frames.begin());
  if (!frames.empty()) look.Symbols = SymbolsOf(frames, look.ProtoKind);
  return look;
}

}  // namespace keplo
