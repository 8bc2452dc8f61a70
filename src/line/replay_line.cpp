#include "line/replay_line.h"

#include <algorithm>
#include <utility>

#include "line/zone_answer.h"

namespace keplo {

namespace {

constexpr std::int32_t kUsualDelay = 10;     // the PROCDELAY setting at which SampleTime holds
constexpr double kSampleTimePerDelay = 0.5;  // microseconds
constexpr double kShortestSampleTime = 1.0;  // microseconds

LineOptions AtDelay(LineOptions options, std::int32_t delay) {
  options.SampleTime = std::max(kShortestSampleTime,
                                options.SampleTime + kSampleTimePerDelay * (double{1} * delay - kUsualDelay));
  return options;
}

using std::chrono_literals::operator""us;

constexpr std::int64_t kLongestPlayedSlot =
    100'000;                             // microseconds; a mistyped pulse must not stop the clock
constexpr std::size_t kMostKept = 1000;  // outputs of a kind, for a line that runs for weeks

template <typename Output>
void KeepLatest(std::vector<Output>& outputs, Output output) {
  if (outputs.size() == kMostKept) outputs.erase(outputs.begin());
  outputs.push_back(std::move(output));
}

/// A monitor that has looked away sees so much of the pause between two presses.
constexpr std::chrono::milliseconds kSeenPause{200};

std::chrono::microseconds TimeOfBytes(std::size_t bytes, const LineOptions& options) {
  return std::chrono::microseconds(
      static_cast<std::int64_t>(static_cast<double>(bytes * 8) * options.SampleTime));
}

std::span<char> Limited(std::span<char> buffer, std::int32_t limit) {
  return buffer.first(std::min(buffer.size(), static_cast<std::size_t>(std::max(limit, 0))));
}

}  // namespace

ReplayLine::ReplayLine(std::vector<Recording> recordings, const std::int16_t& receiverKind,
                       const LineOptions& options)
    : receiverKind_(&receiverKind), options_(options) {
  for (Recording& recording : recordings) {
    std::size_t number = 0;
    for (Press& press : recording.Presses) {
      presses_.push_back({{recording.Path, ++number}, std::move(press)});
    }
  }
}

void ReplayLine::PlayAgainst(std::shared_ptr<LineClock> clock) {
  clock_ = std::move(clock);
  nextStart_ = clock_->Now() + kPressPause;
}

void ReplayLine::AnswerWith(const std::string& characters) {
  zoneAnswers_.insert(zoneAnswers_.end(), characters.begin(), characters.end());
}

std::int32_t ReplayLine::OpenCom(std::int32_t port) {
  return ports_.empty() || std::find(ports_.begin(), ports_.end(), port) != ports_.end() ? 1 : 0;
}

/// The first look at the line after a capture.
void ReplayLine::LookAgain(std::chrono::microseconds now) {
  if (!std::exchange(lookedAway_, false)) return;
  if (clock_ == nullptr) {
    ownTime_ += kPressPause;
    return;
  }
  lookedAt_ = now;
  nextStart_ = std::max(nextStart_, now + kSeenPause);
}

bool ReplayLine::Pending() {
  LookAgain(Now());
  if (clock_ == nullptr) return !Done();
  const std::chrono::microseconds now = clock_->Now();
  const std::chrono::microseconds before = std::exchange(lookedAt_, now);
  if (onAir_ && onAir_->HasBegun(before, now)) return true;
  if (onAir_ && now < onAir_->End()) return false;
  onAir_.reset();
  return !Done() && now >= nextStart_;
}

std::int32_t ReplayLine::DCD() {
  const std::int32_t rest = *receiverKind_ == 0 ? 1 : 0;
  return Pending() ? 1 - rest : rest;
}

void ReplayLine::HoldLastPress(int captures) { heldCaptures_ = std::max(captures, 1); }

void ReplayLine::Advance() {
  last_ = next_;
  if (Held() && --heldCaptures_ > 0) return;
  ++next_;
}

void ReplayLine::Capture(std::span<char> buffer, std::int32_t delay) {
  if (Done()) return;
  const LineOptions options = AtDelay(options_, delay);
  const std::string signal = SignalOfPress(presses_[next_].Signal, buffer.size(), options);
  // Bytes after the signal are the caller's; the silence between two frames of a held key is in it.
  const std::size_t length = Held() ? signal.size() : signal.find_last_not_of('\0') + 1;
  std::copy_n(signal.begin(), length, buffer.begin());
  Advance();
  lookedAway_ = true;
  const std::chrono::microseconds time = TimeOfBytes(length, options);
  ownTime_ += time;
  if (clock_ == nullptr) return;

  const std::chrono::microseconds end = std::max(clock_->Now(), nextStart_) + time;
  clock_->WaitUntil(end);
  nextStart_ = Held() && last_ == next_ ? end : end + kPressPause;
}

void ReplayLine::Monitor(std::span<char> buffer, std::int32_t delay) {
  const LineOptions options = AtDelay(options_, delay);
  const std::chrono::microseconds bufferTime = TimeOfBytes(buffer.size(), options);
  if (onAir_) return CaptureOnAir(buffer, bufferTime, options);
  const auto* const train = Done() ? nullptr : std::get_if<PulseTrain>(&presses_[next_].Signal);
  if (clock_ == nullptr || train == nullptr || Held()) return Capture(buffer, delay);
  LongPress press(PressOnAir(*train, options), std::max(clock_->Now(), nextStart_));
  const std::chrono::microseconds full = press.Start() + bufferTime;
  Capture(buffer, delay);
  if (press.End() <= full) return;
  clock_->WaitUntil(full);
  nextStart_ = press.End() + kPressPause;
  onAir_ = std::move(press);
}

void ReplayLine::CaptureOnAir(std::span<char> buffer, std::chrono::microseconds bufferTime,
                              LineOptions options) {
  const std::chrono::microseconds start = onAir_->FrameStart();
  options.HoldMs = 0;
  const std::string signal = SignalOfPress(onAir_->Take(bufferTime), buffer.size(), options);
  std::copy_n(signal.begin(), signal.find_last_not_of('\0') + 1, buffer.begin());
  lookedAway_ = true;
  clock_->WaitUntil(std::min(start + bufferTime, onAir_->End()));
}

void ReplayLine::IRMonitor(std::span<char> buffer, std::int32_t delay) { Monitor(buffer, delay); }

void ReplayLine::IRMonitorN(std::span<char> buffer, std::int32_t delay) { Monitor(buffer, delay); }

double ReplayLine::SampleTime(std::int32_t delay) const { return AtDelay(options_, delay).SampleTime; }

std::int32_t ReplayLine::IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  if (Done() || limit <= 0) return 0;
  if (clock_ != nullptr) clock_->WaitUntil(nextStart_);
  Capture(Limited(buffer, limit), delay);
  return 1;
}

std::int32_t ReplayLine::IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  return IRRecord(buffer, delay, limit);
}

void ReplayLine::IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) {
  KeepLatest(output_.Signals, {std::string(bytes), pulse, interfaceType, carrier_});
  Wait(std::clamp<std::int64_t>(pulse, 0, kLongestPlayedSlot) * std::ssize(bytes) * 8us);
}

std::int32_t ReplayLine::ReadChr(char& character) {
  if (zoneAnswers_.empty()) return 0;
  const char answer = zoneAnswers_.front();
  zoneAnswers_.pop_front();
  if (answer == '\0') return 0;
  character = answer;
  return 1;
}

std::int16_t ReplayLine::CheckZone(char& character) { return ZoneOfAnswer(character); }

void ReplayLine::uDelay(std::int32_t microseconds) { Wait(std::chrono::microseconds(microseconds)); }

void ReplayLine::SpeakBeep(std::int32_t frequency, std::int32_t duration) {
  KeepLatest(output_.Beeps, {frequency, duration});
  Wait(std::chrono::milliseconds(duration));
}

void ReplayLine::Wait(std::chrono::microseconds duration) {
  if (clock_ != nullptr) clock_->WaitUntil(clock_->Now() + duration);
}

}  // namespace keplo
