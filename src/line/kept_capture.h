#pragma once

#include <string>

#include "formats/recording.h"
#include "signal/analysis_choice.h"

namespace keplo {

/// A capture buffer, and how long each of its samples is.
struct TimedCapture {
  std::string Bytes;
  double SampleTime = 0;  // microseconds
};

/// Lengths of the marks and spaces of a capture, from its first mark on: a recording that CaptureToShow
/// brings back as it was.
PulseTrain PulsesOfCapture(const TimedCapture& capture);

/// A press as a capture to look at. One that was kept from a capture, which shows in lengths of whole
/// samples, has been shaped by a line already and comes back as it was. Any other becomes what a line would
/// record of it.
/// @param usual sample time of captures of this machine, microseconds
/// @param readBy what the capture is to be read by
TimedCapture CaptureToShow(const Press& press, double usual, Analysis readBy);

}  // namespace keplo
