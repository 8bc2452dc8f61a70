#include "signal/second_look/line_shapes.h"

#include <array>
#include <cmath>

namespace keplo::robust {

namespace {

/// The line codes that are known, the one that asks most of a signal first.
constexpr std::array kShapes = {&kRc6Shape, &kBiphaseShape, &kPulseDistanceShape, &kPulseWidthShape};

constexpr double kLeaderUnits = 2.7;  // SONY's leader has 4, the double mark of biphase 2

bool IsLeaderOf(const Leader& leader, const Frame& frame) {
  return leader.Mark - frame.Excess >= kLeaderUnits * frame.Unit;
}

}  // namespace

std::optional<Frame> FrameOf(const Body& body, const std::optional<Leader>& leader) {
  if (!body.LengthsAreDistinct()) return std::nullopt;
  const bool standsOut = leader && leader->Mark >= kLeaderOverMarks * body.Marks.Longest().Most;
  for (const LineShape* shape : kShapes) {
    if (leader && !standsOut && !shape->TellsLeader) continue;
    std::optional<Frame> frame = shape->Read(body, leader ? &*leader : nullptr);
    if (!frame) continue;
    if (leader && !shape->TellsLeader && !IsLeaderOf(*leader, *frame)) return std::nullopt;
    frame->Shape = shape;
    frame->UnitUs = frame->Unit * body.SampleTime;
    frame->Marks = body.Marks;
    frame->Spaces = body.Spaces;
    frame->First = body.First;
    frame->Runs = body.Size;
    if (leader) frame->Led = *leader;
    if (leader) shape->TakeLeader(*frame, *leader, body);
    return frame;
  }
  return std::nullopt;
}

int UnitsOf(int run, double excess, double unit) {
  return static_cast<int>(std::lround((run - excess) / unit));
}

bool HasUsualExcess(const Frame& frame) { return Within(frame.Excess / frame.Unit, -0.3, 0.8); }

bool HasUsualUnit(const Frame& frame) {
  constexpr double kMostUnit = 880;  // microseconds; all of them have less than 700
  return frame.UnitUs <= kMostUnit && HasUsualExcess(frame);
}

bool LeaderSpaceIsDistinct(const Leader& leader, const Body& body) {
  const Length& longest = body.Spaces.Longest();
  return leader.Space >= 1.25 * longest.Mean && leader.Space >= longest.Most + 3;
}

}  // namespace keplo::robust
