#include "line/shaping/whole_samples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "signal/first_analysis.h"

namespace keplo {

namespace {

/// Hands out whole numbers of samples for the runs of one frame, whose sum over the runs of one length
/// follows the sum of their true lengths.
///
/// The first single run is rounded up and the first longer one down. So both whole numbers around the base
/// time occur, and the analysis, which takes the lower of them for its peak, finds the longer runs where it
/// looks for twice and three times that peak.
class SampleDealer {
 public:
  explicit SampleDealer(double unitSamples) : unitSamples_(unitSamples) {}

  int Deal(std::size_t place, int units) {
    Dealt& dealt = dealt_.at(place % 2).at(static_cast<std::size_t>(units));
    const int before = dealt.Samples;
    const int lead = units == 1 ? 1 : 0;
    ++dealt.Runs;
    dealt.Samples = static_cast<int>(dealt.Runs * units * unitSamples_) + lead;
    return dealt.Samples - before;
  }

 private:
  struct Dealt {
    int Runs = 0, Samples = 0;
  };

  double unitSamples_;
  std::array<std::array<Dealt, kMostUnits + 1>, 2> dealt_ = {};  // marks, spaces; by units
};

/// Shortest leader that the walk of the runs tells from three units, samples.
int LeastLeader(double unitSamples) {
  int samples = 1;
  while (RunUnits(samples, static_cast<int>(unitSamples)) <= kMostUnits) ++samples;
  return samples;
}

Frame LayFrame(const Frame& frame, FrameUnits units, const PressTiming& timing, double sampleTime,
               int* laid) {
  const auto timeOf = [&](std::int64_t sample) {
    return std::llround(static_cast<double>(sample) * sampleTime);
  };
  const double unitSamples = timing.Unit / sampleTime;
  const int leastLeader = LeastLeader(unitSamples);
  SampleDealer dealer(unitSamples);

  std::int64_t sample = std::llround(static_cast<double>(frame.Start) / sampleTime);
  const std::int64_t start = timeOf(sample);
  std::int64_t time = start;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const std::int64_t begin = time;
    if (units[i] == kLeader) {
      const auto own = static_cast<int>(std::lround(timing.OnAir(i, frame.Runs[i]) / sampleTime));
      sample += std::max(own, leastLeader);
    } else {
      sample += dealer.Deal(i, units[i]);
    }
    time = timeOf(sample);
    laid[i] = static_cast<int>(time - begin);
  }
  return {{laid, units.size()}, start};
}

}  // namespace

void LayOnWholeSamples(const PressTiming& timing, double sampleTime, ShapingSpace& space) {
  std::size_t runs = 0;
  for (const Frame& frame : space.Frames) runs += frame.Runs.size();
  space.Laid.resize(runs);
  space.Units.resize(runs);
  int* laid = space.Laid.data();
  for (Frame& frame : space.Frames) {
    const std::size_t size = frame.Runs.size();
    if (WriteUnits(frame, timing, space.Units.data()))
      frame = LayFrame(frame, {space.Units.data(), size}, timing, sampleTime, laid);
    laid += size;
  }
}

}  // namespace keplo
