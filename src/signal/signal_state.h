#pragma once

#include <string>

#include "signal/first_analysis.h"
#include "signal/runs.h"
#include "signal/sample_bits.h"
#include "signal/sample_words.h"
#include "signal/second_look/second_look.h"

namespace keplo {

/// The last capture and what was measured in it, beside the readers, which reuse their buffers for the next.
struct SignalState {
  std::string RawCapture;
  double SampleTime = kNominalSampleTime;  // of the capture, microseconds
  Timing Measured;

  SampleWords Samples;
  RunReader Runs;
  std::string RunSymbols;
  SecondLook Second;
  std::string SendAs;  // of the code recorded last, see RecordReading

  /// RawCapture as text, one character 0 or 1 a sample. It is made only on demand, since the analyses work on
  /// runs.
  std::string SampleBits() const { return SamplesToBits(RawCapture); }
};

}  // namespace keplo
