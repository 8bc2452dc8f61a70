#include "line/whole_samples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "signal/timing.h"

namespace keplo {

namespace {

/// Units of the runs of one frame, 1 to 3; 0 for a leader and its space, which count in no line code.
using FrameUnits = std::vector<int>;

constexpr int kLeader = 0;
constexpr int kMostUnits = 3;
constexpr double kLeastLeaderUnits = 3.5;  // SONY has four
constexpr double kUnitTolerance = 0.35;    // units by which a run may miss a whole number of them

std::optional<FrameUnits> UnitsOf(const Frame& frame, const ReceiverExcess& receiver) {
  FrameUnits units;
  for (std::size_t i = 0; i < frame.Runs.size(); ++i) {
    const double length = receiver.OnAir(i, frame.Runs[i]) / receiver.Unit;
    const bool opens = i == 0 || (i == 1 && units.front() == kLeader);
    if (opens && length > kLeastLeaderUnits) {
      units.push_back(kLeader);
      continue;
    }
    const double whole = std::round(length);
    if (whole < 1 || whole > kMostUnits || std::abs(length - whole) > kUnitTolerance) return std::nullopt;
    units.push_back(static_cast<int>(whole));
  }
  return units;
}

using Frames = std::vector<Frame>;
using PressUnits = std::vector<std::optional<FrameUnits>>;  // nothing for a frame that fits no whole units

/// Whether the units that occur are those of one line code.
bool IsPlainLineCode(const PressUnits& press) {
  struct Occurring {
    bool One = false, Two = false, Three = false;
    bool operator==(const Occurring&) const = default;
  };
  std::array<Occurring, 2> occurring;  // marks, spaces
  for (const auto& frame : press) {
    for (std::size_t i = 0; frame && i < frame->size(); ++i) {
      Occurring& kind = occurring.at(i % 2);
      kind.One |= (*frame)[i] == 1;
      kind.Two |= (*frame)[i] == 2;
      kind.Three |= (*frame)[i] == 3;
    }
  }
  constexpr Occurring kOneLength = {true, false, false};
  constexpr Occurring kOneAndTwo = {true, true, false};
  constexpr Occurring kOneAndThree = {true, false, true};
  const auto& [marks, spaces] = occurring;
  const bool pulseDistance = marks == kOneLength && (spaces == kOneAndTwo || spaces == kOneAndThree);
  const bool pulseWidth = marks == kOneAndTwo && spaces == kOneLength;
  const bool biphase = marks == kOneAndTwo && spaces == kOneAndTwo;
  return pulseDistance || pulseWidth || biphase;
}

/// Excess and base time over all single runs, which are more than the shortest pairs.
ReceiverExcess Refine(const Frames& frames, const PressUnits& press) {
  std::array<double, 2> sums = {};  // marks, spaces
  std::array<double, 2> counts = {};
  for (std::size_t f = 0; f < frames.size(); ++f) {
    for (std::size_t i = 0; press[f] && i < press[f]->size(); ++i) {
      if ((*press[f])[i] != 1) continue;
      sums.at(i % 2) += frames[f].Runs[i];
      counts.at(i % 2) += 1;
    }
  }
  const double mark = sums[0] / counts[0];
  const double space = sums[1] / counts[1];
  return {(mark + space) / 2, (mark - space) / 2};
}

/// Hands out whole numbers of samples for the runs of one frame, whose sum over runs of one length follows
/// the sum of their true lengths.
///
/// The first single run is rounded up and the first longer one down. So both whole numbers around the base
/// time occur, and the analysis, which takes the lower of them for its peak, finds the longer runs where it
/// looks for twice and three times that peak.
class SampleDealer {
 public:
  explicit SampleDealer(double unitSamples) : unitSamples_(unitSamples) {}

  int Deal(std::size_t place, int units) {
    int& dealt = dealt_.at(place % 2).at(static_cast<std::size_t>(units));
    const int before = Total(dealt, units);
    return Total(++dealt, units) - before;
  }

 private:
  int Total(int runs, int units) const {
    const int lead = units == 1 && runs > 0 ? 1 : 0;
    return static_cast<int>(std::floor(runs * units * unitSamples_)) + lead;
  }

  double unitSamples_;
  std::array<std::array<int, kMostUnits + 1>, 2> dealt_ = {};
};

/// Microseconds of a number of samples.
std::int64_t TimeOf(std::int64_t samples, double sampleTime) {
  return std::llround(static_cast<double>(samples) * sampleTime);
}

Frame LayFrame(const Frame& frame, const FrameUnits& units, const ReceiverExcess& receiver,
               double sampleTime) {
  const double unitSamples = receiver.Unit / sampleTime;
  // A leader has to be told from three units.
  int leastLeader = 1;
  while (RunUnits(leastLeader, static_cast<int>(unitSamples)) <= kMostUnits) ++leastLeader;

  SampleDealer dealer(unitSamples);
  std::int64_t sample = std::llround(static_cast<double>(frame.Start) / sampleTime);
  Frame laid = {{}, TimeOf(sample, sampleTime)};
  for (std::size_t i = 0; i < units.size(); ++i) {
    const std::int64_t begin = TimeOf(sample, sampleTime);
    sample += units[i] != kLeader
                  ? dealer.Deal(i, units[i])
                  : std::max<std::int64_t>(leastLeader,
                                           std::llround(receiver.OnAir(i, frame.Runs[i]) / sampleTime));
    laid.Runs.push_back(static_cast<int>(TimeOf(sample, sampleTime) - begin));
  }
  return laid;
}

Frame TakeExcessOff(const Frame& frame, const ReceiverExcess& receiver) {
  Frame freed = {{}, frame.Start};
  for (std::size_t i = 0; i < frame.Runs.size(); ++i) {
    freed.Runs.push_back(std::max(1, static_cast<int>(std::lround(receiver.OnAir(i, frame.Runs[i])))));
  }
  return freed;
}

}  // namespace

std::vector<Frame> LayOnWholeSamples(const std::vector<Frame>& frames, const ReceiverExcess& receiver,
                                     double sampleTime) {
  PressUnits press;
  for (const Frame& frame : frames) press.push_back(UnitsOf(frame, receiver));
  const bool plain = IsPlainLineCode(press);
  const ReceiverExcess refined = plain ? Refine(frames, press) : receiver;

  Frames laid;
  for (std::size_t f = 0; f < frames.size(); ++f) {
    laid.push_back(plain && press[f] ? LayFrame(frames[f], *press[f], refined, sampleTime)
                                     : TakeExcessOff(frames[f], refined));
  }
  return laid;
}

}  // namespace keplo
