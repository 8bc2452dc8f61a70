#pragma once

#include <optional>

#include "signal/second_look/frame.h"

namespace keplo::robust {

// A file in shapes/ each.
extern const LineShape kBiphaseShape;
extern const LineShape kPulseDistanceShape;
extern const LineShape kPulseWidthShape;
extern const LineShape kRc6Shape;

/// A mark is a leader if it is this many times as long as any other. SONY has 4 to 2 base times, which 300 us
/// of mark excess still leave at 1.7.
inline constexpr double kLeaderOverMarks = 1.4;

/// The frame of a body, if its runs fall into the lengths of one of the line codes; its symbols are not
/// written yet.
/// @param leader the one in front of the body; without one pulse distance and width need two lengths
std::optional<Frame> FrameOf(const Body& body, const std::optional<Leader>& leader);

/// Base times of a run, rounded.
/// @param excess by which the run is longer than whole base times, samples
int UnitsOf(int run, double excess, double unit);

/// Whether the excess is such as receivers make, and with it the base time such as the common protocols of
/// pulse distance and width have. A lamp's pulses are of any length.
bool HasUsualExcess(const Frame& frame);
bool HasUsualUnit(const Frame& frame);

/// Whether the leader space is longer than any space of the frame. If not, nothing tells it from a digit's.
bool LeaderSpaceIsDistinct(const Leader& leader, const Body& body);

}  // namespace keplo::robust
