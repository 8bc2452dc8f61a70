#include "line/shaping/shaper.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "line/shaping/whole_samples.h"

namespace keplo {

namespace {

/// Silence that a capture needs at its end, samples: the record flow takes more than 100 for a frame's end.
constexpr double kClosingSamples = 104;

/// Shorter base times are not measured whatever is done to them, samples.
constexpr double kShortestBase = 4;

/// The first frame stays even if it is cut.
void LeaveOutCutFrames(std::vector<Frame>& frames, std::size_t bufferBytes, double sampleTime) {
  if (frames.empty()) return;
  const double end = (static_cast<double>(bufferBytes) * 8 - kClosingSamples) * sampleTime;
  const auto cut = std::find_if(frames.begin() + 1, frames.end(),
                                [&](const Frame& frame) { return static_cast<double>(frame.End()) > end; });
  frames.erase(cut, frames.end());
}

}  // namespace

void ShapePress(Pulses press, std::size_t bufferBytes, const LineOptions& options, ShapingSpace& space,
                PulseTrain& shaped) {
  std::vector<Frame>& frames = space.Frames;
  SplitFrames(press, frames);
  const std::optional<PressTiming> timing = MeasurePress(frames);
  if (timing && timing->Unit >= kShortestBase * options.SampleTime) {
    LayOnWholeSamples(*timing, options.SampleTime, space);
  }
  if (!options.KeepsFrames()) LeaveOutCutFrames(frames, bufferBytes, options.SampleTime);
  JoinFrames(frames, LengthOf(press), shaped);
}

}  // namespace keplo
