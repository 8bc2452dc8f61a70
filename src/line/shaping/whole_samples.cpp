#include "line/shaping/whole_samples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "signal/timing.h"

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
  std::array<std::array<int, kMostUnits + 1>, 2> dealt_ = {};  // marks, spaces; by units
};

/// Shortest leader that the walk of the runs tells from three units, samples.
int LeastLeader(double unitSamples) {
  int samples = 1;
  while (RunUnits(samples, static_cast<int>(unitSamples)) <= kMostUnits) ++samples;
  return samples;
}

Frame LayFrame(const Frame& frame, const FrameUnits& units, const PressTiming& timing, double sampleTime) {
  const auto timeOf = [&](std::int64_t sample) {
    return std::llround(static_cast<double>(sample) * sampleTime);
  };
  const double unitSamples = timing.Unit / sampleTime;
  const int leastLeader = LeastLeader(unitSamples);
  SampleDealer dealer(unitSamples);

  std::int64_t sample = std::llround(static_cast<double>(frame.Start) / sampleTime);
  Frame laid = {{}, timeOf(sample)};
  for (std::size_t i = 0; i < units.size(); ++i) {
    const std::int64_t begin = timeOf(sample);
    if (units[i] == kLeader) {
      const auto own = static_cast<int>(std::lround(timing.OnAir(i, frame.Runs[i]) / sampleTime));
      sample += std::max(own, leastLeader);
    } else {
      sample += dealer.Deal(i, units[i]);
    }
    laid.Runs.push_back(static_cast<int>(timeOf(sample) - begin));
  }
  return laid;
}

}  // namespace

std::vector<Frame> LayOnWholeSamples(const std::vector<Frame>& frames, const PressTiming& timing,
                                     double sampleTime) {
  std::vector<Frame> laid;
  for (const Frame& frame : frames) {
    const std::optional<FrameUnits> units = UnitsOf(frame, timing);
    laid.push_back(units ? LayFrame(frame, *units, timing, sampleTime) : frame);
  }
  return laid;
}

}  // namespace keplo
