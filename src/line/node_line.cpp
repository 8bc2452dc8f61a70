#include "line/node_line.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "line/held_signals.h"
#include "line/slot_clock.h"
#include "line/zone_answer.h"
#include "signal/sample_time.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""us;
using std::chrono_literals::operator""s;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr auto kOpenAgain = 2s;   // between two looks for a device that is not there
constexpr auto kRestBefore = 1s;  // ticks go on for so long after the last signal
/// Between two looks at a resting line, for what its driver did not tell.
constexpr auto kSlowLook = 1s;
constexpr auto kNewsWait = 50ms;  // so long a request to end may wait

}  // namespace

NodeLine::NodeLine(DeviceCalls& calls, std::string node, const std::int16_t& receiverKind,
                   LineOptions options, TellUser tell)
    : calls_(calls),
      node_(std::move(node)),
      receiverKind_(&receiverKind),
      options_(options),
      tell_(std::move(tell)),
      beeper_(calls, tell_) {}

std::int32_t NodeLine::OpenCom(std::int32_t /*port*/) {
  CloseCom();
  wanted_ = true;
  nextOpening_ = calls_.Now() + kOpenAgain;
  if (!OpenDevice(closed_)) return 0;
  closed_ = {};
  return 1;
}

void NodeLine::CloseCom() {
  CloseDevice();
  wanted_ = lost_ = false;
}

void NodeLine::Lose() {
  if (!IsOpen()) return;
  CloseDevice();
  lost_ = true;
  nextOpening_ = calls_.Now() + kOpenAgain;
  closed_ = {node_ + " is gone. Plug it in again; it is opened by itself."};
  Tell(closed_.Why);
}

void NodeLine::LookAfterDevice() {
  if (IsOpen()) NoticeLoss();
  if (IsOpen() || !wanted_ || calls_.Now() < nextOpening_) return;
  nextOpening_ = calls_.Now() + kOpenAgain;
  Refusal refusal;
  if (!OpenDevice(refusal)) {
    if (!lost_) closed_ = refusal;
    return;
  }
  closed_ = {};
  RTS(-1);
  TXD(0);
  Tell(node_ + (std::exchange(lost_, false) ? " is back." : " is there now."));
}

bool NodeLine::Ready() {
  LookAfterDevice();
  return IsOpen();
}

void NodeLine::Tell(const std::string& text) const {
  if (tell_) tell_(text);
}

void NodeLine::WarnOnce(Use use) {
  bool& warned = use == Use::Listen ? listenWarned_ : sendWarned_;
  if (std::exchange(warned, true)) return;
  if (const std::string warning = Warning(use); !warning.empty()) Tell(warning);
}

LineOptions NodeLine::CaptureOptions(std::int32_t delay) const {
  LineOptions options = options_;
  options.SampleTime = SampleTimeOf(delay);
  options.HoldMs = 0;
  return options;
}

milliseconds NodeLine::MayRest() {
  if (IsOpen()) return calls_.Now() - restSince_ < kRestBefore ? milliseconds::zero() : kSlowLook;
  if (!wanted_) return kSlowLook;
  return std::chrono::ceil<milliseconds>(std::max<nanoseconds>(nextOpening_ - calls_.Now(), 1ms));
}

std::int32_t NodeLine::DCD() {
  const bool ready = Ready();
  if (ready) WarnOnce(Use::Listen);
  const bool away = ready && SignalWaits();
  if (away) restSince_ = calls_.Now();
  return away == RestLevel() ? 0 : 1;
}

void NodeLine::IRMonitor(std::span<char> buffer, std::int32_t delay) {
  origin_.reset();
  toldLengths_.clear();
  if (IsOpen() && !buffer.empty()) Capture(buffer, delay);
}

void NodeLine::NoteOrigin(Time begin, Pulses press, microseconds most) {
  if (press.empty()) return;
  const Pulses toLastMark = press.first(press.size() - (press.size() % 2 == 0 ? 1 : 0));
  const microseconds length(std::accumulate(toLastMark.begin(), toLastMark.end(), std::int64_t{0}));
  SignalOrigin origin;
  origin.Begin = std::chrono::duration_cast<microseconds>(begin);
  origin.End = origin.Begin + std::min(length, most);
  origin_ = origin;
}

void NodeLine::IRMonitorN(std::span<char> buffer, std::int32_t delay) { IRMonitor(buffer, delay); }

/// A device that goes while it is waited for may come back within the same wait.
std::int32_t NodeLine::IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  const auto most = std::min(buffer.size(), static_cast<std::size_t>(std::max(limit, 0)));
  if (most == 0 || (!Ready() && !lost_)) return 0;
  if (IsOpen()) WarnOnce(Use::Listen);
  if (IsOpen() && !Hears()) return 0;
  Forget();
  // Else a handler would take the signal, and the wait go on.
  const HeldSignals ending;
  const nanoseconds until = calls_.Now() + kLongestRecordWait;
  while (calls_.Now() < until && !HeldSignals::Pending()) {
    const nanoseconds next = std::min<nanoseconds>(until, calls_.Now() + kNewsWait);
    if (!Ready()) {
      calls_.SleepUntil(next);
    } else if (SignalWaits()) {
      // What comes after a torn press may be whole.
      if (Capture(buffer.first(most), delay)) return 1;
      calls_.SleepUntil(calls_.Now() + 1ms);
    } else if (IsOpen()) {
      WaitForNews(next);
    }
  }
  return 0;
}

std::int32_t NodeLine::IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  return IRRecord(buffer, delay, limit);
}

void NodeLine::IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) {
  sent_ = false;
  if (!Ready()) return;
  if (pulse <= 0 || pulse > kLongestSlot) {
    if (std::exchange(refusalTold_, true)) return;
    return Tell("A pulse of " + std::to_string(pulse) + " us is not sent. Use 1 to " +
                std::to_string(kLongestSlot) + " us.");
  }
  WarnOnce(Use::Send);
  sent_ = Send(bytes, std::chrono::microseconds(pulse), interfaceType) && !HeldSignals::Pending();
  // What the receiver hears of it is no press.
  deafUntil_ = calls_.Now() + kOwnEcho;
  Forget();
}

std::int16_t NodeLine::CheckZone(char& character) { return ZoneOfAnswer(character); }

/// Pauses while the device is closed are those between attempts to open it. Only a program that has it may
/// end meanwhile; any other device is opened by itself when it comes.
void NodeLine::uDelay(std::int32_t microseconds) {
  constexpr std::chrono::microseconds kPauseInUse = 100ms;
  std::chrono::microseconds pause(microseconds);
  if (!IsOpen()) pause = IsInUse() ? std::min(pause, kPauseInUse) : 0us;
  SleepUnlessEnded(calls_, calls_.Now() + pause);
}

void NodeLine::SpeakBeep(std::int32_t frequency, std::int32_t duration) {
  beeper_.Sound(frequency, duration);
}

void CopySignal(const std::string& signal, std::size_t samples, std::span<char> buffer) {
  const std::size_t taken = std::max(samples / 8, signal.find_last_not_of('\0') + 1);
  std::copy_n(signal.begin(), std::min(taken, signal.size()), buffer.begin());
}

}  // namespace keplo
