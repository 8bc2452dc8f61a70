#include "line/lirc/lirc_line.h"

#include <fcntl.h>
#include <linux/lirc.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <numeric>
#include <utility>

#include "line/device_access.h"
#include "line/press_capture.h"
#include "line/serial/held_signals.h"
#include "line/serial/light_out.h"
#include "line/zone_answer.h"
#include "signal/sample_time.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""us;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr auto kLircEndSilence = 140ms;  // as on a serial line
constexpr int kLircFrameGap = 6'000;     // microseconds; longer than any space inside a frame
constexpr int kPressGap = 150'000;       // microseconds; a longer space parts two presses
constexpr auto kLircRestBefore = 1s;
constexpr auto kLongRest = 60s;
constexpr auto kLircOpenAgain = 1s;
constexpr auto kOwnEcho = 30ms;            // how long after sending the receiver still tells of it
constexpr unsigned kLircCarrier = 38'000;  // Hz
constexpr std::size_t kMostHeard = 4096;
// What the kernel takes in one write: an odd count of at most 1,023 lengths, less than 500 ms in all.
constexpr std::size_t kMostLengths = 1'001;
constexpr unsigned kLongestWrite = 450'000;  // microseconds

bool Is(std::uint32_t features, std::uint32_t ability) { return (features & ability) != 0; }

}  // namespace

LircAbilities AbilitiesOf(std::uint32_t features) {
  LircAbilities abilities;
  abilities.Receives = Is(features, LIRC_CAN_REC_MODE2);
  abilities.Sends = Is(features, LIRC_CAN_SEND_PULSE);
  abilities.SetsCarrier = Is(features, LIRC_CAN_SET_SEND_CARRIER);
  abilities.OnlyScancodes = !abilities.Receives && Is(features, LIRC_CAN_REC_SCANCODE);
  return abilities;
}

std::string DescribeInabilities(const std::string& device, const LircAbilities& abilities) {
  if (abilities.OnlyScancodes) {
    return device + " gives scancodes only, no lengths. Use a receiver that gives raw infrared.";
  }
  if (!abilities.Receives && !abilities.Sends)
    return device + " neither receives nor sends raw infrared. Use another device.";
  if (!abilities.Receives) return device + " sends only. Use another device to receive.";
  if (!abilities.Sends) return device + " receives only. Use another device to send.";
  return {};
}

LircLine::LircLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind,
                   LineOptions options, TellUser tell)
    : calls_(calls),
      path_(std::move(device)),
      receiverKind_(&receiverKind),
      options_(options),
      tell_(std::move(tell)),
      beeper_(calls, tell_) {}

bool LircLine::Ask() {
  std::uint32_t features = 0;
  if (calls_.Ioctl(device_->Get(), LIRC_GET_FEATURES, &features) != 0) {
    whyNot_ = path_ + " is no infrared device. Correct ports.conf.";
    return false;
  }
  abilities_ = AbilitiesOf(features);
  if (!abilities_.Receives && !abilities_.Sends) {
    whyNot_ = DescribeInabilities(path_, abilities_);
    return false;
  }
  std::uint32_t mode = LIRC_MODE_MODE2;
  if (abilities_.Receives) calls_.Ioctl(device_->Get(), LIRC_SET_REC_MODE, &mode);
  mode = LIRC_MODE_PULSE;
  if (abilities_.Sends) calls_.Ioctl(device_->Get(), LIRC_SET_SEND_MODE, &mode);
  std::uint32_t carrier = kLircCarrier;
  if (abilities_.SetsCarrier) calls_.Ioctl(device_->Get(), LIRC_SET_SEND_CARRIER, &carrier);
  return true;
}

std::int32_t LircLine::OpenCom(std::int32_t /*port*/) {
  CloseCom();
  const int descriptor = calls_.Open(path_, O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    const int error = errno;
    whyNot_ = error == EBUSY ? WhyBusy(path_, HolderOfDevice(path_)) : WhyNoAccess(path_, error);
    return 0;
  }
  device_.emplace(calls_, descriptor);
  if (!Ask()) {
    device_.reset();
    return 0;
  }
  whyNot_.clear();
  ForgetSignals();
  return 1;
}

void LircLine::CloseCom() {
  device_.reset();
  lost_ = false;
}

void LircLine::Lose() {
  if (!device_) return;
  CloseCom();
  lost_ = true;
  nextOpening_ = calls_.Now() + kLircOpenAgain;
  whyNot_ = path_ + " is gone. Plug it in again; it is opened by itself.";
  if (tell_) tell_(whyNot_);
}

void LircLine::ReopenWhenBack() {
  if (!lost_ || calls_.Now() < nextOpening_) return;
  nextOpening_ = calls_.Now() + kLircOpenAgain;
  const std::string whyGone = whyNot_;
  if (OpenCom(0) != 1) {
    lost_ = true;
    whyNot_ = whyGone;
    return;
  }
  if (tell_) tell_(path_ + " is back.");
}

milliseconds LircLine::MayRest() {
  if (lost_) return std::chrono::ceil<milliseconds>(std::max<nanoseconds>(nextOpening_ - calls_.Now(), 1ms));
  if (!device_) return kLongRest;
  return !heard_.empty() || calls_.Now() - restSince_ < kLircRestBefore ? milliseconds::zero()
                                                                        : milliseconds(kLongRest);
}

void LircLine::AddLength(bool mark, int length) {
  if (skipping_) {
    skipping_ = mark || length < kLircFrameGap;
    return;
  }
  if (heard_.empty() && !mark) return;
  const bool nextIsMark = heard_.size() % 2 == 0;
  if (mark == nextIsMark) {
    if (heard_.size() < kMostHeard) heard_.push_back(length);
  } else {
    heard_.back() += length;
  }
}

void LircLine::Take(std::uint32_t item) {
  const int length = static_cast<int>(item & LIRC_VALUE_MASK);
  switch (item & LIRC_MODE2_MASK) {
    case LIRC_MODE2_PULSE:
      AddLength(true, length);
      break;
    case LIRC_MODE2_SPACE:
      AddLength(false, length);
      break;
    case LIRC_MODE2_OVERFLOW:
      heard_.clear();
      skipping_ = true;
      break;
    default:
      // A time-out is followed by the whole silence as a space; the carrier is no length.
      break;
  }
}

void LircLine::ReadItems() {
  if (!device_ || !abilities_.Receives) return;
  std::array<std::uint32_t, 256> items{};
  for (;;) {
    const ssize_t size = calls_.Read(device_->Get(), items.data(), sizeof items);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0 && errno != EAGAIN) Lose();
    if (size <= 0) return;
    lastItem_ = calls_.Now();
    if (lastItem_ < deafUntil_) continue;
    std::for_each_n(items.begin(), static_cast<std::size_t>(size) / sizeof items[0],
                    [this](std::uint32_t item) { Take(item); });
  }
}

std::int32_t LircLine::DCD() {
  ReopenWhenBack();
  ReadItems();
  const bool away = !heard_.empty();
  if (away) restSince_ = calls_.Now();
  const std::int32_t rest = *receiverKind_ == 0 ? 1 : 0;
  return away ? 1 - rest : rest;
}

bool LircLine::WaitForItems(nanoseconds until) {
  const nanoseconds left = until - calls_.Now();
  if (!device_ || left.count() <= 0) return false;
  pollfd input = {device_->Get(), POLLIN, 0};
  const int ready = calls_.Poll(&input, 1, static_cast<int>(std::chrono::ceil<milliseconds>(left).count()));
  if ((input.revents & (POLLHUP | POLLERR)) != 0) {
    Lose();
    return false;
  }
  if (ready > 0) ReadItems();
  return ready > 0;
}

void LircLine::Forget() {
  ReadItems();
  ForgetSignals();
}

void LircLine::ForgetSignals() {
  heard_.clear();
  skipping_ = false;
}

bool LircLine::Capture(std::span<char> buffer, std::int32_t delay) {
  ReadItems();
  if (heard_.empty()) return false;
  LineOptions options = options_;
  options.SampleTime = SampleTimeOf(delay);
  options.HoldMs = 0;
  const double length = static_cast<double>(buffer.size()) * 8 * options.SampleTime;
  PulseTrain press;
  double time = 0;
  std::size_t used = 0;
  bool full = false;
  for (;;) {
    for (; used < heard_.size() && !full; ++used) {
      if (used % 2 == 1 && heard_[used] >= kPressGap) break;
      press.push_back(heard_[used]);
      time += heard_[used];
      full = time >= length;
    }
    if (full || used < heard_.size()) break;
    if (!WaitForItems(lastItem_ + kLircEndSilence)) break;
    if (heard_.size() < used) break;  // the device lost items, and what was heard with them
  }
  used = std::min(used, heard_.size());
  heard_.erase(heard_.begin(), heard_.begin() + static_cast<std::ptrdiff_t>(used));
  // What is left begins with the silence behind the press, or inside its signal.
  if (!heard_.empty() && !full) heard_.erase(heard_.begin());
  if (full) {
    const bool nextIsMark = press.size() % 2 == 0;
    const std::vector<int> rest = std::exchange(heard_, {});
    skipping_ = true;
    for (std::size_t i = 0; i < rest.size(); ++i) AddLength((i % 2 == 0) == nextIsMark, rest[i]);
  }
  const std::string signal = SignalOfPress(Press(press), buffer.size(), options);
  std::copy_n(signal.begin(), signal.find_last_not_of('\0') + 1, buffer.begin());
  return true;
}

void LircLine::IRMonitor(std::span<char> buffer, std::int32_t delay) { Capture(buffer, delay); }

void LircLine::IRMonitorN(std::span<char> buffer, std::int32_t delay) { Capture(buffer, delay); }

std::int32_t LircLine::IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  ReadItems();
  ForgetSignals();
  const nanoseconds until = calls_.Now() + kLongestRecordWait;
  while (heard_.empty() && device_ && calls_.Now() < until) WaitForItems(until);
  const auto most = std::min(buffer.size(), static_cast<std::size_t>(std::max(limit, 0)));
  return most > 0 && Capture(buffer.first(most), delay) ? 1 : 0;
}

std::int32_t LircLine::IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  return IRRecord(buffer, delay, limit);
}

bool LircLine::WriteLengths(const std::vector<unsigned>& lengths) {
  for (;;) {
    const auto size = static_cast<ssize_t>(lengths.size() * sizeof lengths[0]);
    if (calls_.Write(device_->Get(), lengths.data(), static_cast<std::size_t>(size)) == size) return true;
    if (errno != EINTR && errno != EAGAIN) return false;
  }
}

void LircLine::IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t /*interfaceType*/) {
  if (!device_) return;
  const bool sendable = pulse > 0 && pulse <= kLongestSlot;
  if (!sendable || !abilities_.Sends) {
    if (!std::exchange(refusalTold_, true) && tell_) {
      tell_(sendable ? DescribeInabilities(path_, abilities_)
                     : "A pulse of " + std::to_string(pulse) + " us is not sent. Use 1 to " +
                           std::to_string(kLongestSlot) + " us.");
    }
    return;
  }
  const std::vector<LitSlots> lit = LitSlotsOf(bytes);
  const auto slots = [&](std::size_t count) {
    return static_cast<unsigned>(count) * static_cast<unsigned>(pulse);
  };
  const HeldSignals signals;
  const nanoseconds start = calls_.Now();
  for (std::size_t i = 0; i < lit.size() && !signals.Pending();) {
    std::vector<unsigned> lengths;
    const std::size_t first = lit[i].Begin;
    do {
      if (!lengths.empty()) lengths.push_back(slots(lit[i].Begin - lit[i - 1].End));
      lengths.push_back(slots(lit[i].End - lit[i].Begin));
      ++i;
    } while (i < lit.size() && lengths.size() + 2 <= kMostLengths &&
             slots(lit[i].End - first) <= kLongestWrite);
    calls_.SleepUntil(start + microseconds(slots(first)));
    if (!WriteLengths(lengths)) {
      Lose();
      return;
    }
  }
  if (!signals.Pending()) calls_.SleepUntil(start + microseconds(slots(bytes.size() * 8)));
  // What the receiver heard of it is no press.
  deafUntil_ = calls_.Now() + kOwnEcho;
  ReadItems();
  ForgetSignals();
}

std::int16_t LircLine::CheckZone(char& character) { return ZoneOfAnswer(character); }

void LircLine::uDelay(std::int32_t microseconds) {
  calls_.SleepUntil(calls_.Now() + std::chrono::microseconds(microseconds));
}

void LircLine::SpeakBeep(std::int32_t frequency, std::int32_t duration) {
  beeper_.Sound(frequency, duration);
}

}  // namespace keplo
