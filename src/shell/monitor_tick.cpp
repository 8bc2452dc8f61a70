#include <exception>

#include "shell/keplo.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

/// Turns the timer on again whichever way a tick ends, also behind a handler of the host that throws.
class TickEnd {
 public:
  explicit TickEnd(ui::Timer& timer) : timer_(timer) {}
  ~TickEnd() { timer_.SetEnabled(true); }
  TickEnd(const TickEnd&) = delete;
  TickEnd& operator=(const TickEnd&) = delete;

 private:
  ui::Timer& timer_;
};

}  // namespace

void Keplo::Timer1_Timer() {
  Timer1.SetEnabled(false);  // ticks never nest
  const TickEnd end(Timer1);
  if (LineIsAtRest()) {
    lastTick_.Captured = false;
    return;
  }
  try {
    lastTick_ = TickReport{};
    lastTick_.Captured = true;
    Capture();
    ReadAndDispatch();
  } catch (const std::exception& failure) {
    try {
      ReportFailure("Timer1_Timer", failure);
    } catch (const std::exception&) {
      // The host's error handler failed too; ErrorDetails keeps the record, and the next tick comes all the
      // same.
    }
  }
}

bool Keplo::LineIsAtRest() {
  const std::int16_t receiver = mod_.Settings.ReceiverKind;
  if (line_.DCD() == 1 && receiver == 0) return true;
  return line_.DCD() == 0 && receiver == 1;
}

void Keplo::Capture() {
  std::string& capture = mod_.Signal.RawCapture;
  capture.assign(kMonitorCaptureBytes, '\0');
  if (mod_.Settings.ReceiverKind == 0) {
    line_.RTS(-1);
    line_.IRMonitor(capture, mod_.Settings.ProcDelay);
  } else {
    line_.TXD(0);
    line_.RTS(-1);
    line_.IRMonitorN(capture, mod_.Settings.ProcDelay);
  }
}

void Keplo::ReadAndDispatch() {
  lastTick_.Reading = MonitorReading(TrimCapture(mod_.Signal.RawCapture));
  if (lastTick_.Reading.Ended != Stage::Code) return;
  // This beep says only that something was captured, before anything is known about the signal.
  if (mod_.Settings.BeepOn) line_.SpeakBeep(5000, 50);
  lastTick_.Reading = ReadTrimmedCapture(mod_.Signal);
  if (lastTick_.Reading.Ended != Stage::Code) return;

  HostInputEvent event;
  lastTick_.Dispatched = DispatchCode(lastTick_.Reading.Digits, mod_.Store.CfgText, mod_.Settings, ListView1,
                                      line_, event, TriggerInputEvent);
}

}  // namespace keplo
