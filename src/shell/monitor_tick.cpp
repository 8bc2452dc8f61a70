#include <exception>
#include <stdexcept>
#include <utility>

#include "config/raw_lookup.h"
#include "shell/keplo.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

constexpr std::string_view kTickProcedure = "Timer1_Timer";
const std::runtime_error kUnknownFailure("a failure without a text");

}  // namespace

void Keplo::Timer1_Timer() {
  // The timer is off during a tick, but a handler of the host may turn it on and run an event loop.
  if (inTick_) return;
  Timer1.SetEnabled(false);
  inTick_ = true;
  RunAndReport([this] { Tick(); });
  inTick_ = false;
  if (!terminated_) Timer1.SetEnabled(true);
  if (lastTick_.Captured && OnPress) {
    RunAndReport([this] { OnPress(lastTick_); });
  }
}

/// Runs a part of a tick. An exception is reported to the host, and the tick continues.
template <typename Action>
void Keplo::RunAndReport(Action action) {
  try {
    action();
  } catch (const std::exception& failure) {
    ReportFailure(kTickProcedure, failure);
  } catch (...) {
    ReportFailure(kTickProcedure, kUnknownFailure);
  }
}

void Keplo::Tick() {
  lastTick_.Captured = false;
  if (watch_.LookedAway || keys_.AnyPressed()) NoteCheck();
  if (LineIsAtRest()) return ReleaseDueKeys();
  lastTick_ = TickReport{};
  lastTick_.Captured = true;
  Capture();
  ReadAndDispatch();
}

/// If the host's handler fails for one row, it still gets the others.
void Keplo::RaiseInputEvent(HostInputEvent& event) {
  RunAndReport([&] {
    if (TriggerInputEvent) TriggerInputEvent(event);
  });
}

void Keplo::ReportKey(KeyChange change, const KeyPress& key) {
  RunAndReport([&] {
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
  heardReported_ = false;
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
  // Ticks release keys only while the line is at rest, which it may never be while several rooms are in use.
  if (watch_.OnAir.Place != 0)
    ReportReleased(keys_.ReleaseDue(watch_.OnAir.Begin, watch_.WatchedFrom, watch_.OnAir.Place));
  lastTick_.Reading.EndAt(TrimCapture(mod_.Signal.RawCapture));
  if (lastTick_.Reading.Ended != Stage::Code) return ReportHeard();
  // This beep only means that something was captured; the signal has not been read yet.
  if (mod_.Settings.BeepOn && (!MayBeep || MayBeep())) line_.SpeakBeep(5000, 50);
  MonitorReading& reading = lastTick_.Reading;
  ReadTrimmedCapture(mod_.Signal, mod_.Settings.Analysis, reading);
  ReadAsHeldPair(reading);
  ProveByLearning(mod_.Store, reading);
  const bool isDitto = reading.Ended != Stage::Code && ReadAsDitto(reading);
  if (!isDitto && mod_.Settings.Analysis == Analysis::Second) {
    MatchRawCommands(mod_.Store, mod_.Signal, reading);
    ReadAsHeldRawKey(reading);
  }
  if (!reading.HasCode()) {
    Key().HearUnread(watch_.OnAir);
    return ReportHeard();
  }
  if (isDitto) return HandleCode(reading);
  const std::vector<MonitoredTap> taps = TapsOf(reading);
  lastTick_.Taps = static_cast<int>(taps.size());
  for (const MonitoredTap& tap : taps) {
    HearCode(reading, tap);
    HandleCode(reading);
    if (!tap.IsOver) continue;
    if (const auto ended = Key().Release()) ReportReleased({*ended});
  }
}

void Keplo::HandleCode(const MonitorReading& reading) {
  lastTick_.Captured = !WasHeldDuringPause();
  if (lastTick_.Captured) return Dispatch(reading);
  ReportKey(KeyChange::Held, *Key().Press());
  ReportHeard();
}

void Keplo::ReportHeard() {
  if (std::exchange(heardReported_, true)) return;
  RunAndReport([this] {
    if (OnHeard) OnHeard(lastTick_);
  });
}

void Keplo::Dispatch(const MonitorReading& reading) {
  bool keyReported = false;
  const auto reportKeyOnce = [&] {
    if (std::exchange(keyReported, true) || !Key().Press()) return;
    Key().SetCommand(lastTick_.Dispatched.Reference);
    const KeyPress key = *Key().Press();
    ReportKey(key.Captures == 1 ? KeyChange::Pressed : KeyChange::Held, key);
  };
  HostInputEvent event;
  DispatchCode(
      reading.Digits, reading.ReadBy.value_or(Analysis::First), mod_.Store.CfgText, mod_.Settings, ListView1,
      line_, event,
      [&](HostInputEvent& raised) {
        reportKeyOnce();
        RaiseInputEvent(raised);
        // After the event, but before the pause that follows it.
        ReportHeard();
      },
      lastTick_.Dispatched);
  reportKeyOnce();
  ReportHeard();
}

}  // namespace keplo
