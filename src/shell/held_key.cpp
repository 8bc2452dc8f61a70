#include "shell/held_key.h"

#include <algorithm>
#include <utility>

namespace keplo {

namespace {

using std::chrono::microseconds;
using std::chrono_literals::operator""ms;

/// Assumed time from frame to frame if a capture has a single frame: NEC has 107.7 or 89.5 ms and RC5 108 to
/// 114 ms. SONY has 45 ms, but always sends at least three.
constexpr microseconds kUsualPeriod = 114ms;
constexpr microseconds kLongestPause = 250ms;
constexpr microseconds kSlack =
    15ms;  // for inaccurate clocks, and a last frame cut off by the end of the buffer

microseconds LongestPeriodOf(const KeyPress& press) {
  const microseconds period = press.Signature.Period > 0ms ? press.Signature.Period : kUsualPeriod;
  return std::min(period * 9 / 8 + kSlack, kLongestPause);
}

microseconds TwoPeriodsOf(const KeyPress& press) {
  return std::min(2 * LongestPeriodOf(press), kLongestPause);
}

}  // namespace

std::chrono::microseconds HeldKey::ReleaseTime(microseconds watchedFrom) const {
  if (watchedFrom <= last_.End) return last_.End + TwoPeriodsOf(*press_);
  const microseconds period = LongestPeriodOf(*press_);
  return last_.SilenceAfter > period ? watchedFrom : watchedFrom + period;
}

bool HeldKey::IsContinuedAt(const AirTime& air) const {
  return press_ && air.Begin < ReleaseTime(air.WatchedFrom);
}

/// Whether a frame comes one or two periods after the last one, as from a held key; at any other time it is a
/// new tap.
bool HeldKey::IsInTime(const AirTime& air) const {
  // The times of receivers in other rooms are not known this precisely.
  if (unread_ || air.Place != 0 || air.WatchedFrom > last_.End) return true;
  const microseconds time = air.Begin - last_.Begin - last_.LastFrame;
  const microseconds period = press_->Signature.Period;
  if (period == 0ms) return time <= kLongestPeriod;
  const microseconds offTwoPeriods = std::max(time, 2 * period) - std::min(time, 2 * period);
  return time <= period * 9 / 8 + kSlack || offTwoPeriods <= period / 8;
}

bool HeldKey::IsSamePress(const KeySignature& signature, const AirTime& air) const {
  if (!IsContinuedAt(air) || signature.Digits != press_->Signature.Digits) return false;
  const std::optional<bool>& toggle = press_->Signature.Toggle;
  if (toggle && signature.Toggle) return *toggle == *signature.Toggle;
  return !press_->Signature.Dittos && (signature.ReadBy == Analysis::First || IsInTime(air));
}

std::optional<KeyPress> HeldKey::Hear(const KeySignature& signature, const AirTime& air) {
  std::optional<KeyPress> ended;
  if (!IsSamePress(signature, air)) {
    ended = Release();
    press_ = KeyPress{};
    press_->Signature = signature;
    press_->Place = air.Place;
    press_->Zone = air.Zone;
    begin_ = air.Begin;
  }
  press_->Signature.Dittos = press_->Signature.Dittos || signature.Dittos;
  press_->Signature.Period = std::max(press_->Signature.Period, signature.Period);
  Extend(air);
  return ended;
}

void HeldKey::HearDitto(const AirTime& air) {
  press_->Signature.Dittos = true;
  Extend(air);
}

void HeldKey::HearUnread(const AirTime& air) {
  if (!IsContinuedAt(air) || std::exchange(unread_, true)) return;
  last_ = air;
}

void HeldKey::Extend(const AirTime& air) {
  last_ = air;
  unread_ = false;
  ++press_->Captures;
  press_->Held = air.End - begin_;
}

void HeldKey::SetCommand(const std::string& command) {
  if (press_) press_->Command = command;
}

std::optional<KeyPress> HeldKey::Release() {
  unread_ = false;
  return std::exchange(press_, std::nullopt);
}

}  // namespace keplo
