#pragma once

#include <string>

#include "signal/first_analysis.h"
#include "signal/runs.h"
#include "signal/sample_bits.h"
#include "signal/sample_words.h"
#include "signal/second_look/second_look.h"

namespace keplo {

/// What a capture leaves in the module state, and what reads it, which keeps its memory for the next capture.
struct SignalState {
  std::string RawCapture;
  double SampleTime = kNominalSampleTime;  // of the capture, microseconds
  Timing Measured;

  SampleWords Samples;
  RunReader Runs;
  std::string RunSymbols;
  SecondLook Second;
  std::string SendAs;  // of the code recorded last, see RecordReading

  /// One character 0 or 1 a sample of RawCapture. The analyses work on runs, so that the string is made for
  /// those only who look at it.
  std::string SampleBits() const { return SamplesToBits(RawCapture); }
};

}  // namespace keplo
