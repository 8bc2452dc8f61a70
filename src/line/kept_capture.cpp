#include "line/kept_capture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "line/press_capture.h"
#include "signal/recorded_press.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

/// Time of an edge, as a recording has it: whole microseconds.
std::int64_t TimeAt(std::int64_t sample, double sampleTime) {
  return std::llround(static_cast<double>(sample) * sampleTime);
}

bool IsOfWholeSamples(const Press& press, double sampleTime) {
  const auto* train = std::get_if<PulseTrain>(&press);
  if (train == nullptr) return false;
  std::int64_t time = 0;
  return std::all_of(train->begin(), train->end(), [&](int length) {
    time += length;
    return TimeAt(std::llround(static_cast<double>(time) / sampleTime), sampleTime) == time;
  });
}

}  // namespace

PulseTrain PulsesOfCapture(const TimedCapture& capture) {
  const std::string samples = SamplesToBits(capture.Bytes);
  PulseTrain pulses;
  const std::size_t first = samples.find('1');
  const auto timeAt = [&](std::size_t sample) {
    return TimeAt(static_cast<std::int64_t>(sample - first), capture.SampleTime);
  };
  for (std::size_t start = first; start < samples.size();) {
    const std::size_t end = std::min(samples.find_first_not_of(samples[start], start), samples.size());
    pulses.push_back(static_cast<int>(timeAt(end) - timeAt(start)));
    start = end;
  }
  return pulses;
}

TimedCapture CaptureToShow(const Press& press, double usual, Analysis readBy) {
  LineOptions options;
  options.HoldMs = 0;
  options.SampleTime = kNominalSampleTime;
  options.Shape = true;
  options.ReadBy = &readBy;
  for (const double sampleTime : {usual, double{kNominalSampleTime}}) {
    if (!options.Shape || !IsOfWholeSamples(press, sampleTime)) continue;
    options.SampleTime = sampleTime;
    options.Shape = false;
  }
  return {CaptureOfPress(press, kRecordCaptureBytes, options), options.SampleTime};
}

}  // namespace keplo
