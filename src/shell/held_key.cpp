#include "shell/held_key.h"

#include <algorithm>
#include <utility>

namespace keplo {

namespace {

using std::chrono::microseconds;
using std::chrono_literals::operator""ms;

/// From frame to frame, where a capture holds a single one: NEC has 107.7 or 89.5 ms, RC5 108 to 114, SONY,
/// which never sends less than three, 45.
constexpr microseconds kUsualPeriod = 114ms;
constexpr microseconds kLongestPause = 250ms;
constexpr microseconds kSlack = 15ms;  // clocks of remotes, and a last frame that the buffer cut

microseconds PeriodOf(const KeyPress& press) {
  const microseconds period = press.Sign.Period > 0ms ? press.Sign.Period : kUsualPeriod;
  return std::min(period * 9 / 8 + kSlack, kLongestPause);
}

microseconds TwoPeriodsOf(const KeyPress& press) { return std::min(2 * PeriodOf(press), kLongestPause); }

}  // namespace

std::chrono::microseconds HeldKey::LetGoAt(microseconds watchedFrom) const {
  if (watchedFrom <= last_.End) return last_.End + TwoPeriodsOf(*press_);
  const microseconds period = PeriodOf(*press_);
  return last_.SilenceAfter > period ? watchedFrom : watchedFrom + period;
}

bool HeldKey::FollowsOn(const AirTime& air) const { return press_ && air.Begin < LetGoAt(air.WatchedFrom); }

/// Whether a frame comes when a held key sends one, or the one after; what comes between is the next tap.
bool HeldKey::IsInTime(const AirTime& air) const {
  // When other programs tell their captures, it is not known to so few milliseconds.
  if (unread_ || air.Place != 0 || air.WatchedFrom > last_.End) return true;
  const microseconds distance = air.Begin - last_.Begin - last_.LastFrame;
  const microseconds period = press_->Sign.Period;
  if (period == 0ms) return distance <= kLongestPeriod;
  const microseconds lateness = std::max(distance, 2 * period) - std::min(distance, 2 * period);
  return distance <= period * 9 / 8 + kSlack || lateness <= period / 8;
}

bool HeldKey::IsSamePress(const KeySign& sign, const AirTime& air) const {
  if (!FollowsOn(air) || sign.Digits != press_->Sign.Digits) return false;
  const std::optional<bool>& toggle = press_->Sign.Toggle;
  if (toggle && sign.Toggle) return *toggle == *sign.Toggle;
  return !press_->Sign.Dittos && (sign.ReadBy == Analysis::First || IsInTime(air));
}

std::optional<KeyPress> HeldKey::Hear(const KeySign& sign, const AirTime& air) {
  std::optional<KeyPress> ended;
  if (!IsSamePress(sign, air)) {
    ended = LetGo();
    press_ = KeyPress{};
    press_->Sign = sign;
    press_->Place = air.Place;
    press_->Zone = air.Zone;
    begin_ = air.Begin;
  }
  press_->Sign.Dittos = press_->Sign.Dittos || sign.Dittos;
  press_->Sign.Period = std::max(press_->Sign.Period, sign.Period);
  GoOn(air);
  return ended;
}

void HeldKey::HearDitto(const AirTime& air) {
  press_->Sign.Dittos = true;
  GoOn(air);
}

void HeldKey::HearUnread(const AirTime& air) {
  if (!FollowsOn(air) || std::exchange(unread_, true)) return;
  last_ = air;
}

void HeldKey::GoOn(const AirTime& air) {
  last_ = air;
  unread_ = false;
  ++press_->Captures;
  press_->Held = air.End - begin_;
}

void HeldKey::Name(const std::string& command) {
  if (press_) press_->Command = command;
}

std::optional<KeyPress> HeldKey::LetGo() {
  unread_ = false;
  return std::exchange(press_, std::nullopt);
}

}  // namespace keplo
