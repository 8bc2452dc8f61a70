#include "signal/second_look/frame_shapes.h"

#include <array>
#include <cmath>
#include <string_view>
#include <vector>

#include "signal/decode.h"

namespace keplo::robust {

namespace {

constexpr double kLeaderUnits = 2.7;  // SONY's leader has 4, the double mark of biphase 2

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
std::optional<Frame> FrameOfTwoLengths(const Body& body) {
  const double unit = body.ShortestPair() / 2;
  if (body.HasLengths(1, 2) && Within(Step(body.Spaces) / unit, 0.7, 3.6)) return DistanceFrame(body, unit);
  if (body.HasLengths(2, 1) && Within(Step(body.Marks) / unit, 0.7, 3.0)) return WidthFrame(body, unit);
  return std::nullopt;
}

/// A pulse-width frame of equal digits. The leader tells them, since its mark has as much excess as theirs.
std::optional<Frame> FrameOfEqualWidths(const Body& body, const Leader& leader) {
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
std::optional<Frame> FrameOfEqualDistances(const Body& body) {
  const double mark = body.Marks.Short().Mean;
  const double space = body.Spaces.Short().Mean;
  if (space < 1.5 * mark) return DistanceFrame(body, (mark + space) / 2);
  if (space > 1.75 * mark) return DistanceFrame(body, (mark + space) / 4, {"1", "1", "000", "000"});
  return std::nullopt;
}

/// Whether the leader space is longer than any space of the frame. If not, nothing tells it from a digit's.
bool LeaderSpaceIsDistinct(const Leader& leader, const Body& body) {
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
std::string DistanceHead(const Leader& leader, const Frame& frame, bool spaceIsDistinct) {
  const auto units = std::lround((leader.Space + frame.Excess) / frame.Unit);
  if (units <= 1) return "G0";
  return units <= 3 || !spaceIsDistinct ? "G000" : "Gg";
}

std::optional<Frame> FrameAfterLeader(const Leader& leader, const Body& body) {
  if (leader.Mark < kLeaderOverMarks * body.Marks.Longest().Most) return std::nullopt;
  const bool spaceIsDistinct = LeaderSpaceIsDistinct(leader, body);
  std::optional<Frame> frame = !body.HasLengths(1, 1) ? FrameOfTwoLengths(body)
                               : spaceIsDistinct      ? FrameOfEqualDistances(body)
                                                      : FrameOfEqualWidths(body, leader);
  if (!frame || leader.Mark - frame->Excess < kLeaderUnits * frame->Unit) return std::nullopt;
  frame->KnownLeader = IsKnownLeader(*frame, leader);
  const bool distance = frame->Kind == kNec;
  frame->Head = distance ? DistanceHead(leader, *frame, spaceIsDistinct) : spaceIsDistinct ? "Gg" : "G0";
  if (distance && frame->Head != "Gg") ++frame->Digits;
  return frame;
}

/// Marks and spaces of one and two base times in whole pairs of half bits.
std::optional<Frame> BiphaseFrame(const Body& body) {
  if (!body.HasLengths(2, 2) && !body.HasLengths(2, 1)) return std::nullopt;
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

}  // namespace

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

std::optional<Frame> FrameOf(const Body& body, const std::optional<Leader>& leader) {
  if (!body.LengthsAreDistinct()) return std::nullopt;
  std::optional<Frame> frame = leader ? FrameAfterLeader(*leader, body) : BiphaseFrame(body);
  if (!frame && !leader) frame = FrameOfTwoLengths(body);
  if (frame) frame->Runs = body.Size;
  return frame;
}

}  // namespace keplo::robust
