#include "window/calibration_flow.h"

#include <optional>
#include <string>

#include "signal/calibration.h"
#include "signal/sample_bits.h"
#include "ui/wait_notice.h"

namespace keplo {

namespace {

constexpr std::string_view kHoldTheKey =
    "Keep the '1' button on the SONY remote pressed and click OK.\r\n"
    "Keep pressed till you will receive a message.";

/// A non-negative number with a blank in place of the minus sign.
std::string WithSignBlank(int number) { return " " + std::to_string(number); }

constexpr std::string_view kHowToStop =
    "Keep the key pressed. To stop, let it go and wait for ten seconds at most.";

std::string Progress(int delay, std::optional<std::int16_t> baseT) {
  return "Calibrating: delay " + std::to_string(delay) +
         (baseT ? ", base time " + std::to_string(*baseT) : "") + ". " + std::string(kHowToStop);
}

CalibrationStep MeasureToTheEnd(const ui::Window& window, Calibration& calibration) {
  ui::WaitNotice notice(window, Progress(calibration.Delay(), std::nullopt));
  CalibrationStep step = CalibrationStep::Measure;
  while (step == CalibrationStep::Measure) {
    const int delay = calibration.Delay();
    step = calibration.Measure();
    notice.Show(Progress(delay, calibration.BaseT()));
  }
  return step;
}

/// Keeps a flag set during its lifetime.
class FlagGuard {
 public:
  explicit FlagGuard(bool& flag) : flag_(flag) { flag_ = true; }
  ~FlagGuard() { flag_ = false; }
  FlagGuard(const FlagGuard&) = delete;
  FlagGuard& operator=(const FlagGuard&) = delete;

 private:
  bool& flag_;
};

}  // namespace

void CalibrationFlow::Start() {
  if (calibrating_) return;
  const FlagGuard calibrating(calibrating_);
  if (dialogue_.Confirm(kHoldTheKey, "Record a command") && !Calibrate()) return;
  controls_.IRCommand.SetText({});
  line_.RTS(0);
}

bool CalibrationFlow::Calibrate() {
  controls_.SendLoop.SetEnabled(false);
  line_.RTS(-1);
  controls_.SendPulse.SetText({});
  std::int16_t& delay = settings_.ProcDelay;
  Calibration calibration(line_, signal_, delay);
  const CalibrationStep end = MeasureToTheEnd(window_, calibration);
  const bool succeeded = end == CalibrationStep::Succeeded;
  if (succeeded) {
    controls_.ProcDelayparameter.SetText(WithSignBlank(delay));
    keeper_.StoreAndSave("PROCDELAY", delay);
  }
  dialogue_.Tell(CalibrationText(end, delay));
  if (succeeded) controls_.SendPulse.SetText(WithSignBlank(signal_.Measured.BaseT * kNominalSampleTime));
  return end != CalibrationStep::NoSignal;
}

}  // namespace keplo
