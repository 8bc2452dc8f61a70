#pragma once

#include <string>

#include "line/press_capture.h"
#include "signal/monitored_press.h"
#include "synth/synth.h"

namespace keplo::tests {

inline const std::string kNecBits = "00100000110111110001000011101111";
inline const std::string kSonyBits = "101010010000";
inline const std::string kRc5Bits = "11000000001100";

/// A press without jitter, with the given mark excess in microseconds.
inline PulseTrain Clean(std::int16_t kind, const std::string& bits, int excess = 0, int repeats = 2) {
  SynthOptions options;
  options.MarkExcessUs = excess;
  options.JitterUs = 0;
  options.Repeats = repeats;
  return SynthPress(kind, bits, options);
}

/// The runs of each frame of a press.
inline std::vector<PulseTrain> FramesOf(const PulseTrain& press) {
  std::vector<Frame> frames;
  SplitFrames(press, frames);
  std::vector<PulseTrain> runs;
  for (const Frame& frame : frames) runs.emplace_back(frame.Runs.begin(), frame.Runs.end());
  return runs;
}

/// Where the frames of a press begin, microseconds.
inline std::vector<std::int64_t> StartsOf(const PulseTrain& press) {
  std::vector<Frame> frames;
  SplitFrames(press, frames);
  std::vector<std::int64_t> starts;
  for (const Frame& frame : frames) starts.push_back(frame.Start);
  return starts;
}

/// What the monitor reads in a press: the digits, or the stage at which it gave up.
inline std::string Heard(const PulseTrain& press, const LineOptions& options = {},
                         Analysis analysis = Analysis::First) {
  SignalState state;
  state.SampleTime = options.SampleTime;
  const MonitorReading reading =
      ReadCapture(CaptureOfPress(press, kMonitorCaptureBytes, options), state, analysis);
  return reading.Ended == Stage::Code ? reading.Digits : std::string(StageName(reading.Ended));
}

}  // namespace keplo::tests
