#include "signal/first_analysis.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

// Half bits of one base time in pairs, 01 for a one and 10 for a zero; two equal ones side by side make a
// run of two.
//
//    1     1     0     1
//     __    __ __       __
//  __|  |__|     |__ __|

constexpr RunAlphabet kBiphaseAlphabet = {{RunText("1"), RunText("11")}, {RunText("0"), RunText("00")}};
constexpr std::size_t kBiphaseDigits = 14;

/// Digits of the half bits in whole pairs; 0 if a run stands for both halves of a digit.
std::size_t DigitsOfPairs(const Body& body) {
  std::size_t half = 1;  // no receiver sees the first one, a space
  const int longMark = body.Marks.LeastLong(), longSpace = body.Spaces.LeastLong();
  for (std::size_t i = 0; i < body.Size; ++i) {
    const bool isLong = body.First[i] >= (i % 2 == 0 ? longMark : longSpace);
    if (isLong && half % 2 == 0) return 0;
    half += isLong ? 2 : 1;
  }
  return (half + 1) / 2;  // the last one, when it is a space, ran into the gap
}

std::optional<Frame> ReadHalves(const Body& body, const Leader* leader) {
  if (leader != nullptr || (!body.HasLengths(2, 2) && !body.HasLengths(2, 1))) return std::nullopt;
  const double unit = body.ShortestPair() / 2;
  if (!Within(Step(body.Marks) / unit, 0.75, 1.25)) return std::nullopt;
  if (body.Spaces.Number == 2 && !Within(Step(body.Spaces) / unit, 0.75, 1.25)) return std::nullopt;
  if (DigitsOfPairs(body) != kBiphaseDigits) return std::nullopt;
  Frame frame;
  frame.Alphabet = &kBiphaseAlphabet;
  frame.Unit = unit;
  frame.Excess = body.Marks.Short().Mean - unit;
  frame.Clear = IsClear(body.Marks) && IsClear(body.Spaces);
  frame.Digits = kBiphaseDigits;
  return frame;
}

void TakeNoLeader(Frame& /*frame*/, const Leader& /*leader*/, const Body& /*body*/) {}

/// Its length and all its pairs are exact, between two silences. But RC6, with half the base time, may end in
/// as many pairs, and so may a lamp's equal pulses.
bool HalvesProveThemselves(const Frame& frame) {
  constexpr double kLeastUnit = 580, kLeastOfEqual = 700, kMostUnit = 1100;  // microseconds; RC5 has 889
  constexpr std::size_t kFewestDoubles = 3;
  const std::size_t doubles = frame.Symbols.size() - frame.Runs;
  return HasUsualExcess(frame) &&
         Within(frame.UnitUs, doubles < kFewestDoubles ? kLeastOfEqual : kLeastUnit, kMostUnit);
}

}  // namespace

const LineShape kBiphaseShape = {
    .Kind = kRc5,
    .RestUnits = 12,
    .BeginsAtLeader = false,
    .ShowsLostRuns = true,
    .HalvesLookWhole = false,
    .TellsLeader = false,
    .HasToggle = true,
    .HasWholeUnits = true,
    .Read = ReadHalves,
    .TakeLeader = TakeNoLeader,
    .ProvesItself = HalvesProveThemselves,
};

}  // namespace keplo::robust
