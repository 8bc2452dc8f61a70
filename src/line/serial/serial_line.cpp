#include "line/serial/serial_line.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <utility>

#include "line/press_capture.h"
#include "line/real_time.h"
#include "line/serial/dcd_sampler.h"
#include "line/serial/edge_press.h"
#include "line/serial/light_out.h"
#include "line/zone_answer.h"
#include "signal/sample_time.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// Real remotes leave up to 130 ms between two frames of one press; more than 150 ms after a press is felt.
constexpr auto kEndSilence = 140ms;
constexpr auto kAnswerTime = 200ms;     // the slowest zone hardware answers after 150
constexpr auto kRestBefore = 1s;        // ticks go on for so long after the last signal
constexpr auto kSlowLook = 1000ms;      // for edges that the driver did not tell
constexpr auto kOpenAgain = 1s;         // between two looks for a device that went
constexpr std::int32_t kTxdOutput = 1;  // bit of the interface type

}  // namespace

SerialLine::SerialLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind,
                       LineOptions options, TellUser tell)
    : calls_(calls),
      device_(std::move(device)),
      receiverKind_(&receiverKind),
      options_(options),
      tell_(std::move(tell)),
      beeper_(calls, tell_),
      log_(calls) {}

LineLosses SerialLine::Losses() const {
  LineLosses losses = losses_;
  losses.MissedEdges = log_.Missed();
  return losses;
}

std::int32_t SerialLine::OpenCom(std::int32_t /*port*/) {
  CloseCom();
  port_ = SerialPort::Open(calls_, device_, whyNot_);
  if (!port_) return 0;
  whyNot_.clear();
  losses_ = {};
  log_.Begin();
  if (port_->Counters()) watch_ = std::make_unique<EdgeWatch>(calls_, port_->Descriptor(), log_);
  LockMemory();
  insideSignal_ = false;
  stuckAt_.reset();
  return 1;
}

void SerialLine::CloseCom() {
  watch_.reset();
  port_.reset();
  lost_ = false;
}

/// A call on a device that is gone fails; nothing else does.
void SerialLine::Check(bool worked) {
  if (!worked) Lose();
}

void SerialLine::Lose() {
  if (!port_) return;
  CloseCom();
  lost_ = true;
  nextOpening_ = calls_.Now() + kOpenAgain;
  whyNot_ = device_ + " is gone. Plug it in again; it is opened by itself.";
  if (tell_) tell_(whyNot_);
}

void SerialLine::ReopenWhenBack() {
  if (!lost_ || calls_.Now() < nextOpening_) return;
  nextOpening_ = calls_.Now() + kOpenAgain;
  const std::string whyGone = whyNot_;
  if (OpenCom(0) != 1) {
    lost_ = true;
    whyNot_ = whyGone;
    return;
  }
  RTS(-1);
  TXD(0);
  if (tell_) tell_(device_ + " is back.");
}

std::chrono::milliseconds SerialLine::MayRest() {
  if (lost_) return std::chrono::ceil<milliseconds>(std::max<nanoseconds>(nextOpening_ - calls_.Now(), 1ms));
  if (!port_) return kSlowLook;
  if (!watch_ || calls_.Now() - restSince_ < kRestBefore) return milliseconds::zero();
  log_.Rest();
  return log_.Empty() && !log_.Ended() ? kSlowLook : milliseconds::zero();
}

void SerialLine::SetMode(std::int32_t mode) {
  if (!port_) return;
  Check(port_->SetSpeed(mode == 2 ? SerialPort::Speed::Characters : SerialPort::Speed::Carrier));
  if (mode != 2) ForgetSignals();
}

void SerialLine::DTR(std::int32_t state) {
  if (port_) Check(port_->SetLine(TIOCM_DTR, state != 0));
}

void SerialLine::RTS(std::int32_t state) {
  if (port_) Check(port_->SetLine(TIOCM_RTS, state != 0));
}

void SerialLine::TXD(std::int32_t state) {
  if (port_) port_->SetBreak(state != 0);
}

std::optional<bool> SerialLine::Level() {
  if (!port_) return std::nullopt;
  const std::optional<int> lines = port_->Lines();
  if (!lines) {
    Lose();
    return std::nullopt;
  }
  return (*lines & TIOCM_CD) != 0;
}

std::optional<bool> SerialLine::Present() {
  const std::optional<bool> level = Level();
  return level ? std::optional(*level != RestLevel()) : std::nullopt;
}

/// Away from rest also while a signal waits in the log: between two marks the level itself rests.
std::int32_t SerialLine::DCD() {
  ReopenWhenBack();
  if (watch_ && log_.Ended()) {
    // A driver that counts edges may not tell them; the port itself is there then, and is sampled.
    if (port_->Lines()) {
      watch_.reset();
    } else {
      Lose();
    }
  }
  const bool rest = RestLevel();
  const std::optional<bool> level = Level();
  if (!level) return rest ? 1 : 0;
  if (stuckAt_ && (*level != *stuckAt_ || !log_.Empty())) stuckAt_.reset();
  const bool away = watch_ ? SignalWaits(*level) : *level != rest && !stuckAt_;
  if (away) restSince_ = calls_.Now();
  return away == rest ? 0 : 1;
}

bool SerialLine::SignalWaits(bool level) {
  const bool rest = RestLevel();
  const std::vector<Edge> edges = log_.Edges();
  if (FindBeginning(edges, rest, insideSignal_)) return true;
  if (insideSignal_) {
    const bool over = level == rest && (edges.empty() || calls_.Now() - edges.back().At >= kFrameGap);
    if (over) ForgetSignals();
    return false;
  }
  // Light that has ended says nothing; light that the driver told no edge of is a signal all the same.
  log_.Drop(edges.size());
  return level != rest && !stuckAt_;
}

void SerialLine::ForgetSignals() {
  log_.Clear();
  insideSignal_ = false;
}

bool SerialLine::CaptureEdges(std::span<char> buffer, std::int32_t delay) {
  const bool rest = RestLevel();
  std::vector<Edge> edges = log_.Edges();
  std::optional<std::size_t> beginning = FindBeginning(edges, rest, insideSignal_);
  if (!beginning) {
    if (insideSignal_) return false;
    // Away from rest without an edge: the signal began before the line was watched.
    log_.Add({calls_.Now(), !rest}, 0);
    edges = log_.Edges();
    beginning = edges.size() - 1;
  }
  LineOptions options = options_;
  options.SampleTime = SampleTimeOf(delay);
  options.HoldMs = 0;
  const auto length = nanoseconds(
      static_cast<std::int64_t>(static_cast<double>(buffer.size()) * 8 * options.SampleTime * 1000));
  const nanoseconds full = edges[*beginning].At + length;
  nanoseconds end = full;
  for (;;) {
    edges = log_.Edges();
    const Edge& last = edges.back();
    end = last.Level == rest ? std::min(full, last.At + kEndSilence) : full;
    if (calls_.Now() >= end || log_.Ended()) break;
    log_.WaitUntil(end);
  }
  const EdgePress press = ReadPress(edges, *beginning, rest, end);
  if (press.AllLight) stuckAt_ = !rest;
  insideSignal_ = end == full && !press.AllLight;
  // The last edge tells how long the line has been silent when the next one comes.
  log_.Drop(insideSignal_ ? press.Edges - 1 : press.Edges);
  const std::string signal = SignalOfPress(Press(press.Train), buffer.size(), options);
  std::copy_n(signal.begin(), signal.find_last_not_of('\0') + 1, buffer.begin());
  return true;
}

bool SerialLine::Capture(std::span<char> buffer, std::int32_t delay) {
  if (!port_ || buffer.empty()) return false;
  if (watch_) return CaptureEdges(buffer, delay);
  const Hurry hurry;
  const auto sampleTime = nanoseconds(static_cast<std::int64_t>(SampleTimeOf(delay) * 1000));
  const SamplingReport report = SampleSignal(
      calls_, [this] { return Present(); }, buffer, sampleTime, kEndSilence);
  losses_.Samples += report.Samples;
  losses_.FilledSamples += report.Filled;
  losses_.LateSamples += report.Late;
  const bool allLight = report.Samples == buffer.size() * 8 &&
                        std::all_of(buffer.begin(), buffer.end(), [](char byte) { return byte == '\xFF'; });
  if (allLight) stuckAt_ = !RestLevel();
  return true;
}

void SerialLine::IRMonitor(std::span<char> buffer, std::int32_t delay) { Capture(buffer, delay); }

void SerialLine::IRMonitorN(std::span<char> buffer, std::int32_t delay) { Capture(buffer, delay); }

/// Waits for a signal that begins from now on, for as long as a recording waits.
bool SerialLine::WaitForSignal() {
  ForgetSignals();
  const nanoseconds until = calls_.Now() + kLongestRecordWait;
  while (port_ && calls_.Now() < until) {
    const std::optional<bool> present = Present();
    if (!present) return false;
    if (*present || FindBeginning(log_.Edges(), RestLevel(), false)) return true;
    if (watch_) {
      if (log_.Ended()) {
        Lose();
        return false;
      }
      log_.WaitUntil(until);
    } else {
      calls_.SleepUntil(calls_.Now() + nanoseconds(50'000));
    }
  }
  return false;
}

std::int32_t SerialLine::IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  const auto most = std::min(buffer.size(), static_cast<std::size_t>(std::max(limit, 0)));
  return WaitForSignal() && Capture(buffer.first(most), delay) ? 1 : 0;
}

std::int32_t SerialLine::IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  return IRRecord(buffer, delay, limit);
}

void SerialLine::IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) {
  if (!port_) return;
  if (pulse <= 0 || pulse > kLongestSlot) {
    if (!std::exchange(refusalTold_, true) && tell_) {
      tell_("A pulse of " + std::to_string(pulse) + " us is not sent. Use 1 to " +
            std::to_string(kLongestSlot) + " us.");
    }
    return;
  }
  const std::chrono::microseconds slot(pulse);
  const bool txd = (interfaceType & kTxdOutput) != 0;
  Check(txd ? PlayOnTxd(calls_, *port_, bytes, slot) : PlayOnDtr(calls_, *port_, bytes, slot));
  // What the receiver heard of it is no press.
  ForgetSignals();
}

void SerialLine::SendChr(char character) {
  if (!port_) return;
  // An answer that came after its time would be taken for the answer to this question.
  port_->DropInput();
  Check(port_->WriteAll(std::string(1, character)));
}

std::int32_t SerialLine::ReadChr(char& character) {
  if (!port_) return 0;
  const nanoseconds until = calls_.Now() + kAnswerTime;
  for (nanoseconds left = kAnswerTime; left.count() > 0; left = until - calls_.Now()) {
    pollfd input = {port_->Descriptor(), POLLIN, 0};
    const int ready = calls_.Poll(&input, 1, static_cast<int>(std::chrono::ceil<milliseconds>(left).count()));
    if (ready > 0 && calls_.Read(port_->Descriptor(), &character, 1) == 1) return 1;
    if ((input.revents & (POLLHUP | POLLERR)) != 0) {
      Lose();
      return 0;
    }
  }
  return 0;
}

std::int16_t SerialLine::CheckZone(char& character) { return ZoneOfAnswer(character); }

void SerialLine::uDelay(std::int32_t microseconds) {
  calls_.SleepUntil(calls_.Now() + std::chrono::microseconds(microseconds));
}

void SerialLine::SpeakBeep(std::int32_t frequency, std::int32_t duration) {
  beeper_.Sound(frequency, duration);
}

}  // namespace keplo
