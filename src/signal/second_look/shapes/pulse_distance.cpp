#include <array>
#include <cmath>

#include "signal/code_values.h"
#include "signal/decode.h"
#include "signal/second_look/line_shapes.h"
#include "signal/timing.h"

namespace keplo::robust {

namespace {

// A mark of one base time for each digit, and after it a short space or a long one of two base times or
// three.
//
//   leader                  0     1           0     closing mark
//   ________________        _     _           _     _
//  |                |______| |___| |_________| |___| |

constexpr RunAlphabet kDistanceAlphabet = {RunText("1"), RunText("1"), RunText("0"), RunText("000")};
constexpr RunAlphabet kLongDistanceAlphabet = {RunText("1"), RunText("1"), RunText("000"), RunText("000")};

Frame DistanceFrame(const Body& body, double unit, const RunAlphabet& alphabet) {
  Frame frame;
  frame.Alphabet = &alphabet;
  frame.Unit = unit;
  frame.Excess = body.Marks.Short().Mean - unit;
  frame.Digits = body.MarkCount() - 1;
  frame.Clear = IsClear(body.Spaces);
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

std::optional<Frame> ReadDistances(const Body& body, const Leader* leader) {
  if (body.HasLengths(1, 1) && leader != nullptr && LeaderSpaceIsDistinct(*leader, body))
    return FrameOfEqualDistances(body);
  const double unit = body.ShortestPair() / 2;
  if (!body.HasLengths(1, 2) || !Within(Step(body.Spaces) / unit, 0.7, 3.6)) return std::nullopt;
  return DistanceFrame(body, unit, kDistanceAlphabet);
}

/// Symbols of a leader. RunUnits writes a leader space of up to three base times as spaces, which read as a
/// digit; codes that were learned have it.
std::string_view DistanceHead(const Leader& leader, const Frame& frame, bool spaceIsDistinct) {
  const auto units = std::lround((leader.Space + frame.Excess) / frame.Unit);
  if (units <= 1) return "G0";
  return units <= 3 || !spaceIsDistinct ? "G000" : "Gg";
}

void TakeDistanceLeader(Frame& frame, const Leader& leader, const Body& body) {
  const double mark = (leader.Mark - frame.Excess) / frame.Unit;
  const double space = (leader.Space + frame.Excess) / frame.Unit;
  // NEC and its kin: 16 or 8 base times, and 8 or 4.
  frame.KnownLeader = (Within(mark, 7, 9.2) || Within(mark, 14, 18.4)) &&
                      (Within(space, 3.4, 4.6) || Within(space, 7, 9.2)) &&
                      std::abs(frame.Excess) < 0.65 * frame.Unit;
  frame.Head = DistanceHead(leader, frame, LeaderSpaceIsDistinct(leader, body));
  if (frame.Head != "Gg") ++frame.Digits;
}

/// Whether the last of seven groups of four digits is the sum of the four groups before it, as in frames of
/// 28 digits that dittos follow.
bool EndsInItsSum(const Frame& frame) {
  constexpr std::size_t kDigits = 28;
  if (frame.Runs / 2 != kDigits) return false;
  const std::string digits = DecodeCode(frame.Symbols, kNec);
  const auto group = [&](std::size_t number) {
    return BinToInt(std::string_view(digits).substr(4 * number, 4));
  };
  return (group(2) + group(3) + group(4) + group(5)) % 16 == group(6);
}

bool DistancesProveThemselves(const Frame& frame) {
  if (!frame.KnownLeader || !frame.Ends) return false;
  return (frame.Digits >= 32 && frame.Digits % 4 == 0) || (frame.Dittos > 0 && EndsInItsSum(frame));
}

}  // namespace

const LineShape kPulseDistanceShape = {
    .Kind = kNec,
    .RestUnits = 12,  // two marks that are lost between long spaces leave 11
    .BeginsAtLeader = true,
    .ShowsLostRuns = false,
    .HalvesLookWhole = true,
    .Read = ReadDistances,
    .TakeLeader = TakeDistanceLeader,
    .ProvesItself = DistancesProveThemselves,
};

}  // namespace keplo::robust
