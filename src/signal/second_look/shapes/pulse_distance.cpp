#include <array>
#include <cmath>

#include "signal/code_values.h"
#include "signal/first_analysis.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

// A mark of one base time for each digit, and after it a short space or a long one of two base times or
// three.
//
//   leader                  0     1           0     closing mark
//   ________________        _     _           _     _
//  |                |______| |___| |_________| |___| |

constexpr RunAlphabet kDistanceAlphabet = {{RunText("1"), RunText("1")}, {RunText("0"), RunText("000")}};
constexpr RunAlphabet kLongDistanceAlphabet = {{RunText("1"), RunText("1")},
                                               {RunText("000"), RunText("000")}};

Frame DistanceFrame(const Body& body, double unit, const RunAlphabet& alphabet) {
  Frame frame;
  frame.Alphabet = &alphabet;
  frame.Unit = unit;
  frame.Excess = body.Marks.Short().Mean - unit;
  frame.Digits = body.MarkCount() - 1;
  frame.Clear = IsClear(body.Spaces);
  if (body.Spaces.Number == 2) frame.StepUnits = Step(body.Spaces) / unit;
  return frame;
}

/// A frame of equal digits: the space is one base time or three.
std::optional<Frame> FrameOfEqualDistances(const Body& body) {
  const double mark = body.Marks.Short().Mean;
  const double space = body.Spaces.Short().Mean;
  if (space < 1.5 * mark) return DistanceFrame(body, (mark + space) / 2, kDistanceAlphabet);
  if (space > 1.75 * mark) return DistanceFrame(body, (mark + space) / 4, kLongDistanceAlphabet);
  return std::nullopt;
}

constexpr std::size_t kRcaDigits = 24;

LeaderKind KindOf(const Leader& leader, double unit, double excess) {
  const auto markIs = [&](double units) {
    return leader.MarkIsWithin(excess, 0.875 * units * unit, 1.15 * units * unit);
  };
  const double space = (leader.Space + excess) / unit;
  const bool eight = Within(space, 7, 9.2), four = Within(space, 3.4, 4.6);
  // A mark that lost its beginning may be as short as the next shorter kind. If it is longer than that kind,
  // it can only be the longest.
  if ((eight || four) && leader.Mark - excess > 9.2 * unit)
    return markIs(16) ? LeaderKind::Long : LeaderKind::Other;
  if (eight && markIs(8)) return LeaderKind::Even;
  return four && markIs(8) ? LeaderKind::Short : LeaderKind::Other;
}

/// RCA: spaces of two and four base times to a mark of one, after a leader of 8 and 8. The shaper of a line
/// takes the difference of mark and short space for excess and may lay the longer space on 3.5.
bool IsRca(const Body& body, const Leader& leader) {
  const double unit = body.ShortestPair() / 3;
  return body.MarkCount() == kRcaDigits + 1 && Within(Step(body.Spaces) / unit, 1.3, 2.25) &&
         KindOf(leader, unit, body.Marks.Short().Mean - unit) == LeaderKind::Even;
}

std::optional<Frame> ReadDistances(const Body& body, const Leader* leader) {
  if (body.HasLengths(1, 1) && leader != nullptr && LeaderSpaceIsDistinct(*leader, body))
    return FrameOfEqualDistances(body);
  const double unit = body.ShortestPair() / 2;
  if (!body.HasLengths(1, 2) || !Within(Step(body.Spaces) / unit, 0.7, 3.6)) return std::nullopt;
  return DistanceFrame(body, leader != nullptr && IsRca(body, *leader) ? 2 * unit / 3 : unit,
                       kDistanceAlphabet);
}

/// Symbols of a leader. RunUnits writes a leader space of up to three base times as spaces, which read as a
/// digit; codes that were learned have it. Spaces of 3.6 base times are common, and jitter must not make them
/// shorter ones now and then.
std::string_view DistanceHead(const Leader& leader, const Frame& frame, bool spaceIsDistinct) {
  constexpr double kLeastDistinct = 3.25;  // base times
  const double units = (leader.Space + frame.Excess) / frame.Unit;
  if (units < 1.5) return "G0";
  return units < kLeastDistinct || !spaceIsDistinct ? "G000" : "Gg";
}

void TakeDistanceLeader(Frame& frame, const Leader& leader, const Body& body) {
  if (HasUsualUnit(frame)) frame.Leads = KindOf(leader, frame.Unit, frame.Excess);
  const bool isCommon = frame.Leads != LeaderKind::Other;
  frame.Head = DistanceHead(leader, frame, isCommon || LeaderSpaceIsDistinct(leader, body));
  if (frame.Head != "Gg") ++frame.Digits;
}

/// Whether the last of seven groups of four digits is the sum of the four groups before it, as in frames of
/// 28 digits that dittos follow.
bool EndsInItsSum(const Frame& frame) {
  constexpr std::size_t kDigits = 28;
  if (frame.Runs / 2 != kDigits) return false;
  const FrameDigits digits(frame);
  const auto group = [&](std::size_t number) { return BinToInt(digits.Text().substr(4 * number, 4)); };
  return (group(2) + group(3) + group(4) + group(5)) % 16 == group(6);
}

/// Whether some digits of a code are the inverse of those in front of them.
bool AreInverse(std::string_view digits, std::size_t first, std::size_t number) {
  for (std::size_t i = first; i < first + number; ++i) {
    if (digits[i] == digits[i + number]) return false;
  }
  return true;
}

/// Whether 32 digits are what 42 begin with, and none of NEC's own.
bool IsFrontOf42(std::string_view digits) {
  return AreInverse(digits, 0, 13) && !(AreInverse(digits, 0, 8) && AreInverse(digits, 16, 8));
}

/// In all common protocols the longer space is two base times longer, less what the shaper of a line takes
/// off; what does not come from a remote may have any length.
bool HasCommonSpaces(const Frame& frame) {
  return frame.StepUnits == 0 || Within(frame.StepUnits, 1.25, 2.6);
}

/// Only numbers of digits that a protocol has prove anything: lost marks, or a lost end, leave any number.
bool DistancesProveThemselves(const Frame& frame) {
  if (frame.Leads == LeaderKind::Other || !frame.Ends || !HasCommonSpaces(frame)) return false;
  const FrameDigits decoded(frame);
  const std::string_view digits = decoded.Text();
  if (digits.size() != frame.Digits) return false;
  switch (digits.size()) {
    case kRcaDigits:
      return frame.Leads == LeaderKind::Even && AreInverse(digits, 0, 12);
    case 28:
      return frame.Dittos > 0 && EndsInItsSum(frame) && !AreInverse(digits, 0, 8);  // as NEC's are
    case 32:
      return frame.Leads == LeaderKind::Long ? !IsFrontOf42(digits)
                                             : frame.Leads == LeaderKind::Even && HasBothDigits(digits, 1);
    case 42:
      return AreInverse(digits, 0, 13) && AreInverse(digits, 26, 8);
    default:
      return digits.size() == 48 && HasBothDigits(digits, 1);
  }
}

}  // namespace

const LineShape kPulseDistanceShape = {
    .Kind = kNec,
    .RestUnits = 12,  // two marks that are lost between long spaces leave 11
    .BeginsAtLeader = true,
    .ShowsLostRuns = false,
    .HalvesLookWhole = true,
    .TellsLeader = false,
    .HasToggle = false,
    .HasWholeUnits = false,
    .Read = ReadDistances,
    .TakeLeader = TakeDistanceLeader,
    .ProvesItself = DistancesProveThemselves,
};

}  // namespace keplo::robust
