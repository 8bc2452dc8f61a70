#include "signal/calibration.h"

#include "signal/first_analysis.h"
#include "signal/win32_ser.h"

namespace keplo {

namespace {

constexpr std::int16_t kTargetBase = 10;  // samples
constexpr std::int16_t kEndBase = 9;      // samples
constexpr std::int16_t kLargestDelay = 70;

}  // namespace

CalibrationStep CalibrationSearch::Take(std::optional<std::int16_t> baseT) {
  if (!baseT) return CalibrationStep::Measure;
  if (delay_ == 0 && *baseT < kTargetBase) return CalibrationStep::TooSlow;
  if (delay_ > kLargestDelay) return CalibrationStep::Failed;
  if (*baseT == kTargetBase && first_ == 0) first_ = delay_;
  if (*baseT == kEndBase) {
    if (first_ == 0) return CalibrationStep::Measure;
    delay_ = static_cast<std::int16_t>(first_ + (delay_ - first_) / 2);
    return CalibrationStep::Succeeded;
  }
  ++delay_;
  return CalibrationStep::Measure;
}

Calibration::Calibration(Win32Ser& line, SignalState& signal, std::int16_t& delay)
    : line_(line), signal_(signal), delay_(delay) {
  delay_ = search_.Delay();
  // Once for all captures: what one of them leaves alone is still there from the one before.
  signal_.RawCapture.assign(kCalibrationCaptureBytes, '\0');
}

CalibrationStep Calibration::Measure() {
  line_.SpeakBeep(5000, 50);
  const std::int32_t received = line_.IRRecord(signal_.RawCapture, delay_, kCalibrationLimit);
  if (static_cast<std::int16_t>(received) == 0) {
    line_.SpeakBeep(600, 1000);
    return CalibrationStep::NoSignal;
  }
  line_.SpeakBeep(2000, 50);
  signal_.Samples.Read(signal_.RawCapture);
  baseT_.reset();
  if (AnalyseTiming(signal_.Runs.Read(signal_.Samples), signal_.Measured)) baseT_ = signal_.Measured.BaseT;
  const CalibrationStep next = search_.Take(baseT_);
  delay_ = search_.Delay();
  return next;
}

std::string CalibrationText(CalibrationStep end, std::int16_t delay) {
  switch (end) {
    case CalibrationStep::NoSignal:
      return "Autocalibration aborted!\r\nNo IR command received.";
    case CalibrationStep::TooSlow:
      return "Your computer is to slow for this application!";
    case CalibrationStep::Failed:
      return "Calibration procedure failed!";
    case CalibrationStep::Succeeded:
      return "Calibration succeeded.\r\nPROCDELAY= " + std::to_string(delay);
    default:
      return {};
  }
}

}  // namespace keplo
