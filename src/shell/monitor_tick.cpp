#include <exception>
#include <stdexcept>
#include <utility>

#include "config/raw_lookup.h"
#include "shell/keplo.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

constexpr std::string_view kTickProcedure = "Timer1_Timer";
const std::runtime_error kNamelessFailure("a failure without a text");

}  // namespace

void Keplo::Timer1_Timer() {
  // The timer is off in a tick, but a handler of the host may turn it on and run an event loop of its own.
  if (inTick_) return;
  Timer1.SetEnabled(false);
  inTick_ = true;
  Reporting([this] { Tick(); });
  inTick_ = false;
  if (!terminated_) Timer1.SetEnabled(true);
  if (lastTick_.Captured && OnPress) {
    Reporting([this] { OnPress(lastTick_); });
  }
}

/// Runs a part of a tick; what it throws is told to the host, and the tick goes on to its end.
template <typename Part>
void Keplo::Reporting(Part part) {
  try {
    part();
  } catch (const std::exception& failure) {
    ReportFailure(kTickProcedure, failure);
  } catch (...) {
    ReportFailure(kTickProcedure, kNamelessFailure);
  }
}

void Keplo::Tick() {
  lastTick_.Captured = false;
  if (watch_.LookedAway || keys_.AnyPressed()) LookAgain();
  if (LineIsAtRest()) return LetGoIfOver();
  lastTick_ = TickReport{};
  lastTick_.Captured = true;
  Capture();
  ReadAndDispatch();
}

/// A host whose handler fails at one row gets the other rows of the press all the same.
void Keplo::RaiseInputEvent(HostInputEvent& event) {
  Reporting([&] {
    if (TriggerInputEvent) TriggerInputEvent(event);
  });
}

void Keplo::TellKey(KeyChange change, const KeyPress& key) {
  Reporting([&] {
    if (OnKey) OnKey(change, key);
  });
}

bool Keplo::LineIsAtRest() {
  const std::int16_t receiver = mod_.Settings.ReceiverKind;
  if (line_.DCD() == 1 && receiver == 0) return true;
  return line_.DCD() == 0 && receiver == 1;
}

void Keplo::Capture() {
  std::string& capture = mod_.Signal.RawCapture;
  capture.assign(kMonitorCaptureBytes, '\0');
  toldHeard_ = false;
  mod_.Signal.SampleTime = line_.SampleTime(mod_.Settings.ProcDelay);
  const std::chrono::microseconds begin = LineTime();
  if (mod_.Settings.ReceiverKind == 0) {
    line_.RTS(-1);
    line_.IRMonitor(capture, mod_.Settings.ProcDelay);
  } else {
    line_.TXD(0);
    line_.RTS(-1);
    line_.IRMonitorN(capture, mod_.Settings.ProcDelay);
  }
  TimeCapture(begin);
}

void Keplo::ReadAndDispatch() {
  // At a line that is never at rest the other rooms' keys are let go all the same.
  if (watch_.OnAir.Place != 0)
    TellReleased(keys_.LetGo(watch_.OnAir.Begin, watch_.WatchedFrom, watch_.OnAir.Place));
  lastTick_.Reading.EndAt(TrimCapture(mod_.Signal.RawCapture));
  if (lastTick_.Reading.Ended != Stage::Code) return TellHeard();
  // This beep says only that something was captured, before anything is known about the signal.
  if (mod_.Settings.BeepOn && (!MayBeep || MayBeep())) line_.SpeakBeep(5000, 50);
  MonitorReading& reading = lastTick_.Reading;
  ReadTrimmedCapture(mod_.Signal, mod_.Settings.Analysis, reading);
  CompleteTurn(reading);
  // A frame that is alone may have lost digits; that the very same ones were learned is the proof it lacks.
  ProveByLearning(mod_.Store, reading);
  const bool repeats = reading.Ended != Stage::Code && RepeatsHeldKey(reading);
  if (!repeats && mod_.Settings.Analysis == Analysis::Second) {
    AskRawCommands(mod_.Store, mod_.Signal, reading);
    TakeHeldRawKey(reading);
  }
  if (!reading.HasCode()) {
    Key().HearUnread(watch_.OnAir);
    return TellHeard();
  }
  if (repeats) return TellCode(reading);
  for (const MonitoredTap& tap : TapsOf(reading)) {
    HearCode(reading, tap);
    TellCode(reading);
    if (!tap.IsOver) continue;
    if (const auto ended = Key().LetGo()) TellReleased({*ended});
  }
}

void Keplo::TellCode(const MonitorReading& reading) {
  lastTick_.Captured = !WasHeldInThePause();
  if (lastTick_.Captured) return Dispatch(reading);
  TellKey(KeyChange::Held, *Key().Pressed());
  TellHeard();
}

void Keplo::TellHeard() {
  if (std::exchange(toldHeard_, true)) return;
  Reporting([this] {
    if (OnHeard) OnHeard(lastTick_);
  });
}

void Keplo::Dispatch(const MonitorReading& reading) {
  bool told = false;
  const auto tell = [&] {
    if (std::exchange(told, true) || !Key().Pressed()) return;
    Key().Name(lastTick_.Dispatched.Reference);
    const KeyPress key = *Key().Pressed();
    TellKey(key.Captures == 1 ? KeyChange::Pressed : KeyChange::Held, key);
  };
  HostInputEvent event;
  DispatchCode(
      reading.Digits, reading.ReadBy.value_or(Analysis::First), mod_.Store.CfgText, mod_.Settings, ListView1,
      line_, event,
      [&](HostInputEvent& raised) {
        tell();
        RaiseInputEvent(raised);
        // The event comes first, and the pause after it last.
        TellHeard();
      },
      lastTick_.Dispatched);
  tell();
  TellHeard();
}

}  // namespace keplo
