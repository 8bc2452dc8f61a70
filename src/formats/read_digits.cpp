#include <algorithm>
#include <cmath>
#include <span>

#include "formats/families.h"
#include "formats/remote.h"

namespace keplo {

namespace {

constexpr double kLeaderOverMarks = 1.4;  // a leader's mark is longer than all others by this
constexpr double kGapOverPair =
    5.2;  // a leader's space is four pairs of mark and short space; parts of a long message rest for five
constexpr std::size_t kFewestDigits = 8;        // fewer are no message of a remote
constexpr std::size_t kBiphaseDigitCount = 14;  // of RC5
constexpr std::size_t kSplash = 3;              // runs of a disturbance before the signal, at most
constexpr std::size_t kSyncAndDigit = 5;        // runs of a sync, a digit and a closing mark
constexpr int kLongGap = 20'000;                // microseconds
constexpr std::size_t kRc5Toggle = 2;           // digit

using Runs = std::span<const int>;

/// What stands between two gaps, a mark at both ends.
struct PressPiece {
  Runs Lengths;
  int After = 0;  // 0 at the end of the press
};

/// Lengths that fall into one or two groups.
struct LengthPair {
  double Short = 0, Long = 0;  // means; Long 0 for one group
  int Border = 0;              // lengths above are long

  bool IsTwo() const { return Long > 0; }
};

std::vector<int> EverySecond(Runs runs, std::size_t first) {
  std::vector<int> lengths;
  for (std::size_t i = first; i < runs.size(); i += 2) lengths.push_back(runs[i]);
  return lengths;
}

double MeanOf(Runs lengths) {
  double sum = 0;
  for (const int length : lengths) sum += length;
  return sum / static_cast<double>(lengths.size());
}

/// Whether these are the ends of one group, and not two lengths of a code beside a third.
bool IsTight(int least, int most) {
  constexpr int kStraying = 300;  // microseconds, that receivers and line noise make of one length
  return 5 * most <= 8 * least || most - least <= kStraying;
}

/// @return none if a length strays between the two
std::optional<LengthPair> PairOf(std::vector<int> lengths) {
  if (lengths.empty()) return std::nullopt;
  std::sort(lengths.begin(), lengths.end());
  const int least = lengths.front(), most = lengths.back();
  if (most <= 1.4 * least) return LengthPair{MeanOf(lengths), 0, most};
  const int middle = least + (most - least) / 2;
  const auto longOnes = std::upper_bound(lengths.begin(), lengths.end(), middle);
  const auto count = static_cast<std::size_t>(longOnes - lengths.begin());
  const int lowest = lengths[count], highest = lengths[count - 1];
  if (2 * (lowest - highest) < most - least || !IsTight(least, highest) || !IsTight(lowest, most))
    return std::nullopt;
  return LengthPair{MeanOf(Runs(lengths).first(count)), MeanOf(Runs(lengths).subspan(count)), middle};
}

int LowerQuartile(std::vector<int> lengths) {
  const auto quarter = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 4);
  std::nth_element(lengths.begin(), quarter, lengths.end());
  return *quarter;
}

std::vector<PressPiece> SplitAt(Runs press, double gap) {
  std::vector<PressPiece> pieces;
  std::size_t first = 0;
  for (std::size_t i = 1; i < press.size(); i += 2) {
    if (press[i] <= gap) continue;
    pieces.push_back({press.subspan(first, i - first), press[i]});
    first = i + 1;
  }
  if (first < press.size()) {
    const std::size_t size = press.size() - first;
    pieces.push_back({press.subspan(first, size - (size + 1) % 2), 0});
  }
  return pieces;
}

int Rounded(double length) { return static_cast<int>(std::lround(length)); }

std::optional<CodedSignal> ReadRc5(Runs runs) {
  constexpr double kHalf = 889;  // microseconds
  std::string halves = "0";
  double sum = 0;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const long count = std::lround(runs[i] / kHalf);
    if (count < 1 || count > 2 || std::abs(runs[i] - static_cast<double>(count) * kHalf) > 0.35 * kHalf) {
      return std::nullopt;
    }
    halves.append(static_cast<std::size_t>(count), i % 2 == 0 ? '1' : '0');
    sum += runs[i];
  }
  const double unit = sum / static_cast<double>(halves.size() - 1);
  if (halves.size() % 2 != 0) halves += '0';
  if (halves.size() != 2 * kBiphaseDigitCount) return std::nullopt;
  CodedSignal signal = SignalOf(FamilyNamed("RC5"), {});
  const int half = Rounded(unit);
  signal.Code.Unit = half;
  signal.Code.Zero = signal.Code.One = {half, half};
  signal.Again = {};
  for (std::size_t i = 0; i < halves.size(); i += 2) {
    if (halves[i] == halves[i + 1]) return std::nullopt;
    signal.Digits += halves[i + 1];
  }
  signal.Digits[kRc5Toggle] = '0';
  return signal;
}

/// The digits of a frame whose marks and spaces are told; equal digits are told by their ratio.
class BodyText {
 public:
  BodyText(Runs body, Pulse leader) : body_(body), leader_(leader) {}

  std::optional<CodedSignal> Read() {
    const std::optional<LengthPair> marks = PairOf(EverySecond(body_, 0));
    const std::optional<LengthPair> spaces = PairOf(EverySecond(body_, 1));
    if (!marks || !spaces) return std::nullopt;
    signal_.Code.Sync = leader_;
    if (!marks->IsTwo() && spaces->IsTwo()) {
      ReadDistances(*marks, *spaces);
    } else if (marks->IsTwo() && !spaces->IsTwo()) {
      ReadWidths(*marks, *spaces);
    } else if (marks->IsTwo() || !ReadEqual(marks->Short, spaces->Short)) {
      return std::nullopt;
    }
    if (signal_.Digits.size() < kFewestDigits) return std::nullopt;
    return signal_;
  }

 private:
  void ReadDistances(const LengthPair& marks, const LengthPair& spaces) {
    SetDistance(marks.Short, spaces.Short, spaces.Long);
    for (const int space : EverySecond(body_, 1)) signal_.Digits += space > spaces.Border ? '1' : '0';
  }

  void SetDistance(double mark, double zero, double one) {
    Coding& code = signal_.Code;
    code.Line = LineCode::Distance;
    code.Tail = Rounded(mark);
    code.Zero = {Rounded(mark), Rounded(zero)};
    code.One = {Rounded(mark), Rounded(one)};
    code.Unit = UnitOf(code);
  }

  void ReadWidths(const LengthPair& marks, const LengthPair& spaces) {
    SetWidth(marks.Short, marks.Long, spaces.Short);
    for (const int mark : EverySecond(body_, 0)) signal_.Digits += mark > marks.Border ? '1' : '0';
  }

  void SetWidth(double zero, double one, double space) {
    Coding& code = signal_.Code;
    code.Line = LineCode::Width;
    code.Tail = 0;
    code.Zero = {Rounded(zero), Rounded(space)};
    code.One = {Rounded(one), Rounded(space)};
    code.Unit = UnitOf(code);
  }

  /// A leader's space that is one of the digits' is of pulse width.
  bool ReadEqual(double mark, double space) {
    if (leader_.Mark == 0) return false;
    if (leader_.Space > 1.4 * space) {
      const bool isOne = space > 1.75 * mark;
      if (!isOne && space >= 1.5 * mark) return false;
      const double unit = (mark + space) / (isOne ? 4 : 2);
      SetDistance(mark, isOne ? 2 * unit - mark : space, isOne ? space : 4 * unit - mark);
      signal_.Digits.assign(body_.size() / 2, isOne ? '1' : '0');
      return true;
    }
    const double ratio = (leader_.Mark - mark) / (mark + space);
    const bool zeros = ratio > 1.25 && ratio < 1.75;
    const bool ones = ratio > 0.6 && ratio < 0.76 && mark > 1.5 * space;
    if (!zeros && !ones) return false;
    SetWidth(zeros ? mark : mark - space, zeros ? mark + space : mark, space);
    signal_.Digits.assign(body_.size() / 2 + 1, ones ? '1' : '0');
    return true;
  }

  Runs body_;
  Pulse leader_;
  CodedSignal signal_;
};

/// The frames of a press, one after another.
class PressReader {
 public:
  std::optional<CodedSignal> Read(Runs press, double gap) {
    const std::vector<PressPiece> pieces = SplitAt(press, gap);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      const bool last = i + 1 == pieces.size();
      if (!TakePiece(pieces[i], last)) return std::nullopt;
    }
    for (const Runs runs : unread_) {
      if (!IsSpoiltFrame(runs)) return std::nullopt;
    }
    // Without a leader a single frame may have lost its head, unless its protocol has none.
    const bool proven = signal_.Code.HasSync() || signal_.Code.Line == LineCode::Biphase ||
                        FamilyOf(signal_, {}) != nullptr || (frames_ > 1 && !BeginsAsLeaderWould());
    if (frames_ == 0 || !proven) return std::nullopt;
    if (frames_ > 1 && signal_.Again.Kind == RepeatKind::Unknown) signal_.Again.Kind = RepeatKind::Frame;
    return signal_;
  }

  bool UsedSingleLeader() const { return usedSingleLeader_; }

 private:
  bool TakePiece(const PressPiece& piece, bool last) {
    const Runs runs = piece.Lengths;
    if (runs.size() == 1 && !last && leader_.Mark == 0) {
      leader_ = {runs[0], piece.After};
      return true;
    }
    if (frames_ > 0 && IsDitto(runs)) {
      signal_.Again.Kind = RepeatKind::Short;
      signal_.Again.ShortSync = {runs[0], runs[1]};
      return true;
    }
    if (frames_ > 0 && IsSignOfRepeat(runs)) return true;
    if (frames_ == 0 && runs.size() <= kSplash && piece.After > kLongGap) return true;
    const std::optional<CodedSignal> frame = ReadFrame(runs);
    usedSingleLeader_ = usedSingleLeader_ || leader_.Mark > 0;
    leader_ = {};
    if (frame) return TakeFrame(*frame, piece.After, last);
    if (last && frames_ > 0 && IsBegun(runs)) return true;
    unread_.push_back(runs);
    return true;
  }

  /// Whether the first digit alone is a one, as a leader before equal digits seems to be. Codes have digits
  /// in fours.
  bool BeginsAsLeaderWould() const {
    return signal_.Code.Line == LineCode::Distance && signal_.Digits.rfind('1') == 0 &&
           signal_.Digits.size() % 4 != 0;
  }

  bool IsDitto(Runs runs) const {
    return runs.size() == 3 && signal_.Code.HasSync() && runs[0] > 5 * runs[2] &&
           std::abs(runs[0] - signal_.Code.Sync.Mark) * 5 < signal_.Code.Sync.Mark;
  }

  /// Some protocols repeat by their sync and one digit, which no section of the store sends.
  bool IsSignOfRepeat(Runs runs) const {
    const Pulse& sync = signal_.Code.Sync;
    return runs.size() == kSyncAndDigit && signal_.Code.HasSync() &&
           std::abs(runs[0] - sync.Mark) * 5 < sync.Mark && std::abs(runs[1] - sync.Space) * 5 < sync.Space;
  }

  std::optional<CodedSignal> ReadFrame(Runs runs) const {
    if (leader_.Mark > 0) return BodyText(runs, leader_).Read();
    if (runs.size() < 2 * kFewestDigits - 1) return std::nullopt;
    if (std::optional<CodedSignal> rc5 = ReadRc5(runs)) return rc5;
    const std::vector<int> marks = EverySecond(runs, 2);
    const bool led = runs[0] > kLeaderOverMarks * *std::max_element(marks.begin(), marks.end());
    return led ? BodyText(runs.subspan(2), {runs[0], runs[1]}).Read() : BodyText(runs, {}).Read();
  }

  bool TakeFrame(const CodedSignal& frame, int after, bool last) {
    if (frames_ == 0) {
      signal_ = frame;
      signal_.Again.Gap = after;
    } else if (frame.Digits != signal_.Digits || frame.Code.Line != signal_.Code.Line) {
      return last && after == 0 && signal_.Digits.starts_with(frame.Digits);
    } else if (signal_.Code.HasSync() && !frame.Code.HasSync()) {
      signal_.Again.Kind = RepeatKind::Body;
    } else if (signal_.Code.HasSync() != frame.Code.HasSync()) {
      return false;
    }
    ++frames_;
    return true;
  }

  /// A frame that the end of the list cut, before it was long enough to be read.
  bool IsBegun(Runs runs) const {
    const PulseTrain whole = FrameLengths(signal_);
    return runs.size() < whole.size() &&
           std::equal(runs.begin(), runs.end() - 1, whole.begin(),
                      [](int a, int b) { return std::abs(a - b) * 3 < std::max(a, b); });
  }

  /// A frame in which one length strays, but no digit by it.
  bool IsSpoiltFrame(Runs runs) const {
    const PulseTrain whole = FrameLengths(signal_);
    if (runs.size() != whole.size()) return false;
    const Coding& code = signal_.Code;
    for (std::size_t i = code.HasSync() ? 2 : 0; i < runs.size(); ++i) {
      const int one = i % 2 == 0 ? code.One.Mark : code.One.Space;
      const int zero = i % 2 == 0 ? code.Zero.Mark : code.Zero.Space;
      const bool isLong = 2 * runs[i] > one + zero, wasLong = 2 * whole[i] > one + zero;
      const bool tells = 5 * one > 7 * zero;
      if (tells ? isLong != wasLong : 2 * runs[i] < whole[i] || runs[i] > 2 * whole[i]) return false;
    }
    return code.Line != LineCode::Biphase;
  }

  CodedSignal signal_;
  std::vector<Runs> unread_;  // that no frame was read from
  bool usedSingleLeader_ = false;
  Pulse leader_;  // of the frame to come, after which the line rested for as long as after a frame
  int frames_ = 0;
};

}  // namespace

std::optional<CodedSignal> ReadDigits(const PulseTrain& press) {
  if (press.size() < 2 * kFewestDigits - 1) return std::nullopt;
  const std::vector<int> spaces = EverySecond(press, 1);
  const double pair = LowerQuartile(EverySecond(press, 0)) + LowerQuartile(spaces);
  const double gap = kGapOverPair * pair;
  if (std::optional<CodedSignal> signal = PressReader().Read(press, gap)) return signal;
  // Some leaders rest as long as the line does between frames, or nearly so.
  int longest = 0;
  for (const int space : spaces) {
    if (space <= gap) longest = std::max(longest, space);
  }
  PressReader reader;
  std::optional<CodedSignal> signal = reader.Read(press, 0.85 * longest);
  return reader.UsedSingleLeader() ? signal : std::nullopt;
}

}  // namespace keplo
