#include "line/serial/serial_line.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <utility>

#include "line/device_access.h"
#include "line/held_signals.h"
#include "line/kept_capture.h"
#include "line/press_capture.h"
#include "line/real_time.h"
#include "line/serial/dcd_sampler.h"
#include "line/serial/edge_press.h"
#include "line/serial/light_out.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""us;
using std::chrono_literals::operator""ms;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr auto kAnswerTime = 200ms;  // the slowest zone hardware answers after 150
constexpr auto kLongestMark = 20ms;  // of any remote; the end of longer light may have gone unreported
constexpr auto kLamp = 100ms;        // light that has not changed for this long is no signal
/// Opening a port makes it flash, which a receiver should not take for a part of the signal.
constexpr auto kAfterFlash = 20ms;
constexpr int kEnoughUntold = 2;             // sampled signals show that a driver reports no edges
constexpr auto kLook = 50us;                 // between two looks at a line without edges
constexpr int kAnswerLook = 50;              // milliseconds between two looks whether the program is to end
constexpr std::int32_t kTxdOutput = 1;       // bit of the interface type
constexpr std::int32_t kZoneCharacters = 2;  // of SetMode

nanoseconds SampleTimeOf(const LineOptions& options) {
  return nanoseconds(static_cast<std::int64_t>(options.SampleTime * 1000));
}

}  // namespace

SerialLine::SerialLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind,
                       LineOptions options, TellUser tell)
    : NodeLine(calls, std::move(device), receiverKind, options, std::move(tell)), log_(calls) {}

std::optional<int> SerialLine::ModemLines() {
  if (!port_) return std::nullopt;
  const EdgeWatch::OwnLook look(watch_.get());
  return port_->Lines();
}

/// Edges that nobody listens to, such as those of our own sending, do not count as missed.
void SerialLine::Drop(std::size_t edges) {
  log_.Drop(edges);
  missed_ = log_.Missed();
}

bool SerialLine::OpenDevice(Refusal& refusal) {
  port_ = SerialPort::Open(calls_, Node(), refusal);
  if (!port_) return false;
  losses_ = {};
  missed_ = 0;
  sampledUntold_ = 0;
  opened_ = calls_.Now();
  log_.Begin();
  if (port_->Counters()) watch_ = std::make_unique<EdgeWatch>(calls_, port_->Descriptor(), log_);
  LockMemory();
  inside_.reset();
  stuckAt_.reset();
  if (mode_ == kZoneCharacters) SetMode(mode_);
  return true;
}

void SerialLine::CloseDevice() {
  watch_.reset();
  port_.reset();
}

/// Whether the port itself is still there, where no modem line can be asked.
bool SerialLine::HungUp() {
  pollfd port = {port_->Descriptor(), 0, 0};
  return calls_.Poll(&port, 1, 0) > 0 && (port.revents & (POLLHUP | POLLERR)) != 0;
}

std::string SerialLine::Warning(Use /*use*/) const { return WhyUnfit(Node(), port_->HasModemLines()); }

/// A call fails only if the device is gone.
bool SerialLine::Worked(bool worked) {
  if (!worked) Lose();
  return worked;
}

void SerialLine::NoticeLoss() {
  if (!port_->HasModemLines()) Worked(!HungUp());
  if (!watch_) return;
  // A driver that counts edges may not report them. The port is there all the same, and is sampled.
  const bool mute = watch_->Mute() || log_.Ended();
  if (mute && Worked(port_->Lines().has_value())) watch_.reset();
}

milliseconds SerialLine::MayRest() {
  if (!IsOpen()) return NodeLine::MayRest();
  if (!port_->HasModemLines()) return NodeLine::MayRest();
  if (!watch_) return milliseconds::zero();
  log_.Rest();
  const bool news = (HasEdges() && !log_.Edges().empty()) || log_.Ended();
  return !news ? NodeLine::MayRest() : milliseconds::zero();
}

void SerialLine::SetMode(std::int32_t mode) {
  mode_ = mode;
  if (!port_) return;
  const auto speed = mode == kZoneCharacters ? SerialPort::Speed::Characters : SerialPort::Speed::Carrier;
  if (!Worked(port_->SetSpeed(speed))) return;
  // After a change of settings the driver reports no edges until a new wait begins.
  if (watch_) watch_->Look();
  if (mode != kZoneCharacters) Forget();
}

void SerialLine::DTR(std::int32_t state) {
  if (port_) Worked(port_->SetLine(TIOCM_DTR, state != 0));
}

void SerialLine::RTS(std::int32_t state) {
  if (port_) Worked(port_->SetLine(TIOCM_RTS, state != 0));
}

void SerialLine::TXD(std::int32_t state) {
  if (port_) port_->SetBreak(state != 0);
}

std::optional<bool> SerialLine::Level() {
  if (port_ && !port_->HasModemLines()) return RestLevel();
  if (const std::optional<int> lines = ModemLines()) return (*lines & TIOCM_CD) != 0;
  Lose();
  return std::nullopt;
}

/// Whether signals are known by their edges. Until the driver has reported one, the line is sampled.
bool SerialLine::HasEdges() const { return watch_ && watch_->Proven(); }

/// Away from rest also while a signal waits in the log: between two marks the level itself rests.
bool SerialLine::SignalWaits() {
  if (watch_ && !watch_->Proven()) watch_->Look();
  const std::optional<bool> level = Level();
  if (!level) return false;
  if (IsDeaf()) {
    Forget();
    return false;
  }
  if (stuckAt_ && (*level != *stuckAt_ || !log_.Edges().empty())) stuckAt_.reset();
  return HasEdges() ? EdgesWait(*level) : LightIsOn(*level);
}

bool SerialLine::EdgesWait(bool level) {
  const std::span<const Edge> edges = log_.Edges();
  if (FindBeginning(edges, RestLevel(), inside_)) return true;
  if (!inside_) {
    // Light that has ended means nothing; light of which the driver has reported no edge is a signal.
    Drop(edges.size());
    return level != RestLevel() && !stuckAt_;
  }
  const nanoseconds still = calls_.Now() - (edges.empty() ? *inside_ : edges.back().At);
  if (still < (level == RestLevel() ? nanoseconds(kFrameGap) : nanoseconds(kLamp))) return false;
  inside_.reset();
  Drop(edges.size());
  return EdgesWait(level);
}

bool SerialLine::LightIsOn(bool level) {
  if (inside_ && IsQuiet()) inside_.reset();
  return level != RestLevel() && !inside_ && !stuckAt_;
}

/// Looks at a line without edges until it has been still for as long as between two frames, or is not.
bool SerialLine::IsQuiet() {
  const nanoseconds begin = calls_.Now();
  const std::optional<bool> first = Level();
  for (std::optional<bool> level = first; level == first; level = Level()) {
    if (!level) return false;
    if (calls_.Now() - begin >= (*level == RestLevel() ? nanoseconds(kFrameGap) : nanoseconds(kLamp))) {
      return true;
    }
    calls_.SleepUntil(calls_.Now() + kLook);
  }
  return false;
}

/// A key that is held goes on: what comes next counts only from the beginning of a frame on.
void SerialLine::Forget() {
  const std::span<const Edge> edges = log_.Edges();
  if (!edges.empty()) {
    inside_ = edges.back().At;
  } else if (!HasEdges() || Level() != RestLevel()) {
    inside_ = calls_.Now();
  }
  Drop(edges.size());
}

void SerialLine::WaitForNews(Time until) {
  // A driver that counts edges may report none of them.
  if (HasEdges()) return log_.WaitUntil(until);
  const Hurry hurry;
  do {
    calls_.SleepUntil(calls_.Now() + kLook);
  } while (calls_.Now() < until && !HasEdges() && !inside_ && Level() == RestLevel());
}

/// After a whole capture of light.
void SerialLine::NoticeStuck() {
  stuckAt_ = !RestLevel();
  if (std::exchange(stuckTold_, true)) return;
  Tell(Node() + " rests at " + (*stuckAt_ ? "1" : "0") +
       ", where a receiver of the other kind does; change the setting ITYPE, or look for a lamp.");
}

bool SerialLine::CaptureEdges(std::span<char> buffer, const LineOptions& options) {
  const bool rest = RestLevel();
  std::optional<std::size_t> beginning = FindBeginning(log_.Edges(), rest, inside_);
  if (!beginning) {
    if (inside_) return false;
    // Away from rest without an edge: the signal began before the line was watched.
    log_.Put({calls_.Now(), !rest});
    beginning = log_.Edges().size() - 1;
  }
  const nanoseconds begin = log_.Edges()[*beginning].At;
  const nanoseconds full = begin + static_cast<std::int64_t>(buffer.size() * 8) * SampleTimeOf(options);
  nanoseconds end = full;
  for (;;) {
    const Edge last = log_.Edges().back();
    const nanoseconds now = calls_.Now();
    end = last.Level == rest ? std::min<nanoseconds>(full, last.At + kEndSilence) : full;
    if (now >= end || log_.Ended()) break;
    const bool mayHaveEnded = last.Level != rest && now - last.At >= kLongestMark;
    if (mayHaveEnded) watch_->Look();
    log_.WaitUntil(std::min<nanoseconds>(end, last.Level != rest ? now + kLongestMark : end));
  }
  const std::span<const Edge> edges = log_.Edges();
  const EdgePress press = ReadPress(edges, *beginning, rest, end);
  stuckAt_.reset();
  if (press.AllLight) NoticeStuck();
  inside_ = end == full && !press.AllLight ? std::optional(edges[press.Edges - 1].At) : std::nullopt;
  losses_.MissedEdges += log_.Missed() - missed_;
  Drop(press.Edges);
  if (log_.Ended()) {
    NoticeLoss();
    return IsOpen();
  }
  toldLengths_ = press.Train;
  NoteOrigin(begin, press.Train, std::chrono::ceil<std::chrono::microseconds>(full - begin));
  CopySignal(SignalOfPress(Press(press.Train), buffer.size(), options),
             static_cast<std::size_t>((end - begin) / SampleTimeOf(options)), buffer);
  return true;
}

/// The part up to now of a signal that has begun since the last look. What the driver has reported of it,
/// though it has yet to prove that it reports all edges, is closer than samples that begin only now.
KnownBeginning SerialLine::JustTold(Time now) {
  const std::span<const Edge> edges = log_.Edges();
  const auto begin = std::find_if(edges.begin(), edges.end(), [&](const Edge& edge) {
    return edge.Level != RestLevel() && edge.At < now && now - edge.At < kFrameGap;
  });
  if (begin == edges.end()) return {now, {}};
  return {begin->At,
          ReadPress(edges, static_cast<std::size_t>(begin - edges.begin()), RestLevel(), now).Train};
}

bool SerialLine::CaptureSamples(std::span<char> buffer, const LineOptions& options) {
  std::string samples(buffer.size(), '\0');
  SamplingReport report;
  {
    const Hurry hurry;
    report = SampleSignal(
        calls_, JustTold(calls_.Now()),
        [this]() -> std::optional<bool> {
          const std::optional<bool> level = Level();
          return level ? std::optional(*level != RestLevel()) : std::nullopt;
        },
        samples, SampleTimeOf(options), kEndSilence);
  }
  losses_.Samples += report.Samples;
  losses_.FilledSamples += report.Filled;
  losses_.LateSamples += report.Late;
  if (!IsOpen()) return false;
  const bool full = report.Samples == buffer.size() * 8;
  const bool allLight =
      full && std::all_of(samples.begin(), samples.end(), [](char byte) { return byte == '\xFF'; });
  if (allLight) NoticeStuck();
  inside_ = full && !allLight ? std::optional(calls_.Now()) : std::nullopt;
  // A driver that reports edges would have reported one of these, unless a look came at the same moment.
  if (watch_ && !allLight && !watch_->Proven() && ++sampledUntold_ == kEnoughUntold) watch_.reset();
  Drop(log_.Edges().size());
  // Only lengths can be freed of what the receiver did to them.
  const PulseTrain press = PulsesOfCapture({std::move(samples), options.SampleTime});
  CopySignal(SignalOfPress(Press(press), buffer.size(), options), report.Samples, buffer);
  return true;
}

bool SerialLine::Capture(std::span<char> buffer, std::int32_t delay) {
  const LineOptions options = CaptureOptions(delay);
  return HasEdges() ? CaptureEdges(buffer, options) : CaptureSamples(buffer, options);
}

bool SerialLine::Send(std::string_view bytes, std::chrono::microseconds slot, std::int32_t interfaceType) {
  const bool txd = (interfaceType & kTxdOutput) != 0;
  if (!txd && !port_->HasModemLines()) return false;  // the user has been warned
  calls_.SleepUntil(opened_ + kAfterFlash);
  // Characters for zone hardware are too slow to be a carrier.
  const std::int32_t before = mode_;
  if (txd && before == kZoneCharacters) SetMode(1);
  const bool worked =
      port_ && Worked(PlayLight(calls_, *port_, txd ? LightOutput::Txd : LightOutput::Dtr, bytes, slot));
  if (mode_ != before) SetMode(before);
  return worked;
}

void SerialLine::SetCarrier(std::int32_t hertz) {
  if (port_) carrierNote_.Tell([this](const std::string& text) { Tell(text); }, Node(), hertz);
}

void SerialLine::SendChr(char character) {
  LookAfterDevice();
  if (!port_) return;
  // An answer that came after its time would be taken for the answer to this question.
  port_->DropInput();
  Worked(port_->WriteAll(std::string(1, character)));
}

std::int32_t SerialLine::ReadChr(char& character) {
  if (!port_) return 0;
  const nanoseconds until = calls_.Now() + kAnswerTime;
  for (nanoseconds left = kAnswerTime; left.count() > 0 && !HeldSignals::Pending();
       left = until - calls_.Now()) {
    pollfd input = {port_->Descriptor(), POLLIN, 0};
    const auto timeout = static_cast<int>(std::chrono::ceil<milliseconds>(left).count());
    const int ready = calls_.Poll(&input, 1, std::min(timeout, kAnswerLook));
    if (ready > 0 && calls_.Read(port_->Descriptor(), &character, 1) == 1) return 1;
    if ((input.revents & (POLLHUP | POLLERR)) != 0) {
      Lose();
      return 0;
    }
  }
  return 0;
}

}  // namespace keplo
