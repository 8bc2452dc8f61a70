#include <numeric>

#include "signal/first_analysis.h"
#include "signal/second_look/line_shapes.h"

namespace keplo::robust {

namespace {

// A space of one base time for each digit, and after it a short mark or a long one.
//
//   leader          0         1             0
//   ____________     ___      _______      ___
//  |            |___|   |____|       |____|   |

constexpr RunAlphabet kWidthAlphabet = {{RunText("1"), RunText("11")}, {RunText("0"), RunText("0")}};
constexpr RunAlphabet kLongWidthAlphabet = {{RunText("11"), RunText("11")}, {RunText("0"), RunText("0")}};

Frame WidthFrame(const Body& body, double unit, const RunAlphabet& alphabet) {
  Frame frame;
  frame.Alphabet = &alphabet;
  frame.Unit = unit;
  frame.Excess = unit - body.Spaces.Short().Mean;
  frame.Digits = body.MarkCount();
  frame.Clear = IsClear(body.Marks);
  if (body.Marks.Number == 2) frame.StepUnits = Step(body.Marks) / unit;
  return frame;
}

/// A frame of equal digits. The leader shows which, as its mark has the same excess as theirs.
std::optional<Frame> FrameOfEqualWidths(const Body& body, const Leader& leader) {
  const double mark = body.Marks.Short().Mean;
  const double space = body.Spaces.Short().Mean;
  // SONY: three base times to two for zeros, two to three for ones; 1 to 2 is what biphase may begin with.
  const double ratio = (leader.Mark - mark) / (mark + space);
  if (Within(ratio, 1.25, 1.75) && mark < 2 * space)
    return WidthFrame(body, (mark + space) / 2, kWidthAlphabet);
  if (Within(ratio, 0.6, 0.76) && mark > 1.2 * space)
    return WidthFrame(body, (mark + space) / 3, kLongWidthAlphabet);
  return std::nullopt;
}

std::optional<Frame> ReadWidths(const Body& body, const Leader* leader) {
  if (body.HasLengths(1, 1) && leader != nullptr && !LeaderSpaceIsDistinct(*leader, body))
    return FrameOfEqualWidths(body, *leader);
  const double unit = body.ShortestPair() / 2;
  if (!body.HasLengths(2, 1) || !Within(Step(body.Marks) / unit, 0.7, 3.0)) return std::nullopt;
  return WidthFrame(body, unit, kWidthAlphabet);
}

void TakeWidthLeader(Frame& frame, const Leader& leader, const Body& body) {
  constexpr double kLeastUnit = 412;  // microseconds; SONY has 600
  const double mark = (leader.Mark - frame.Excess) / frame.Unit;
  const double space = (leader.Space + frame.Excess) / frame.Unit;
  const bool usual = frame.UnitUs >= kLeastUnit && HasUsualUnit(frame);
  if (Within(mark, 3.2, 4.8) && space < 2 && usual) frame.Leads = LeaderKind::Width;
  frame.Head = LeaderSpaceIsDistinct(leader, body) ? "Gg" : "G0";
}

/// SONY begins a frame every 75 base times, and none is so long. What comes earlier and without a leader is
/// the rest of a frame that lost marks in between.
bool KeepsItsPeriod(const Frame& frame) {
  constexpr double kLeastPeriod = 70;  // base times
  const int length = std::accumulate(frame.First, frame.First + frame.Runs, frame.Led.Mark + frame.Led.Space);
  return frame.ThenLeader || length + frame.After >= kLeastPeriod * frame.Unit;
}

bool WidthsProveThemselves(const Frame& frame) {
  return frame.Leads == LeaderKind::Width && frame.Ends && KeepsItsPeriod(frame) &&
         (frame.Digits == 12 || frame.Digits == 15 || frame.Digits == 20);
}

}  // namespace

const LineShape kPulseWidthShape = {
    .Kind = kSony,
    .RestUnits = 8,  // spaces are short: two lost marks leave 7, and the longest code 10
    .BeginsAtLeader = true,
    .ShowsLostRuns = false,
    .HalvesLookWhole = false,
    .TellsLeader = false,
    .HasToggle = false,
    .HasWholeUnits = true,
    .Read = ReadWidths,
    .TakeLeader = TakeWidthLeader,
    .ProvesItself = WidthsProveThemselves,
};

}  // namespace keplo::robust
