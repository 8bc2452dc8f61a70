#include <string>

#include "signal/calibration.h"
#include "ui/wait_notice.h"
#include "window/form1.h"

namespace keplo {

namespace {

constexpr std::string_view kHoldTheKey =
    "Keep the '1' button on the SONY remote pressed and click OK.\r\n"
    "Keep pressed till you will receive a message.";

/// A number where a sign would have its place.
std::string Signed(int positive) { return " " + std::to_string(positive); }

std::string Progress(const Calibration& calibration) {
  const auto baseT = calibration.BaseT();
  return "Calibrating: delay " + std::to_string(calibration.Delay()) +
         (baseT ? ", base time " + std::to_string(*baseT) : "") +
         ". Keep the key pressed; let it go to stop.";
}

CalibrationStep MeasureToTheEnd(const ui::Window& window, Calibration& calibration) {
  ui::WaitNotice notice(window, Progress(calibration));
  CalibrationStep step = calibration.Measure();
  while (step == CalibrationStep::Measure) {
    notice.Show(Progress(calibration));
    step = calibration.Measure();
  }
  return step;
}

}  // namespace

void Form1::CalibrationMenu_Click() {
  if (calibrating_) return;
  calibrating_ = true;
  const bool ended = !boxes_.Confirm(kHoldTheKey, "Record a command") || Calibrate();
  calibrating_ = false;
  if (!ended) return;
  IRCommand.SetText({});
  line_.RTS(0);
}

bool Form1::Calibrate() {
  Timer1.SetEnabled(false);
  line_.RTS(-1);
  SendPulse.SetText({});
  std::int16_t& delay = mod_.Settings.ProcDelay;
  Calibration calibration(line_, mod_.Signal, delay);
  const CalibrationStep end = MeasureToTheEnd(*this, calibration);
  const bool succeeded = end == CalibrationStep::Succeeded;
  if (succeeded) {
    ProcDelayparameter.SetText(Signed(delay));
    KeepSettingAndSave("PROCDELAY", delay);
  }
  Tell(CalibrationText(end, delay));
  if (succeeded) SendPulse.SetText(Signed(mod_.Signal.Measured.BaseT * kNominalSampleTime));
  return end != CalibrationStep::NoSignal;
}

}  // namespace keplo
