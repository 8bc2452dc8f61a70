#include "line/lirc/lirc_line.h"

#include <fcntl.h>
#include <linux/lirc.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <numeric>
#include <utility>

#include "line/device_access.h"
#include "line/lirc/sent_parts.h"
#include "line/press_capture.h"
#include "line/slot_clock.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr int kFrameGapUs = microseconds(kFrameGap).count();
constexpr int kPressGap = 150'000;  // microseconds; a longer space parts two presses
constexpr std::size_t kMostHeard = 4096;
constexpr auto kGetReady = 2ms;    // before a signal, to work out its lengths
constexpr auto kLongestBusy = 2s;  // for a device that is busy for itself
constexpr auto kTryAgain = 1ms;
constexpr auto kTellingTime = 20ms;  // a driver may tell several items at once

bool Is(std::uint32_t features, std::uint32_t ability) { return (features & ability) != 0; }

std::string WhyNotSent(const std::string& device, int error) {
  if (error == EINVAL)
    return device + " does not take a signal of these lengths. Check SENDPLS and the protocol.";
  if (error == EBUSY) return device + " is sending for another program. Try again.";
  return device + " did not send: " + std::strerror(error) + ". Try again, or use another device.";
}

/// An error of a transfer, EIO, comes of devices that are there too.
bool IsGone(int error) { return error == ENODEV || error == ENXIO || error == ESHUTDOWN; }

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
    : NodeLine(calls, std::move(device), receiverKind, options, std::move(tell)) {}

/// @param why written if the device is of no use
void LircLine::Ask(std::string& why) {
  std::uint32_t features = 0;
  if (calls_.Ioctl(device_->Get(), LIRC_GET_FEATURES, &features) != 0) {
    why =
        IsGone(errno) ? WhyNoAccess(Node(), ENODEV) : Node() + " is no infrared device. Correct ports.conf.";
    return;
  }
  abilities_ = AbilitiesOf(features);
  if (!abilities_.Receives && !abilities_.Sends) why = DescribeInabilities(Node(), abilities_);
  std::uint32_t mode = LIRC_MODE_MODE2;
  if (abilities_.Receives) calls_.Ioctl(device_->Get(), LIRC_SET_REC_MODE, &mode);
  mode = LIRC_MODE_PULSE;
  if (abilities_.Sends) calls_.Ioctl(device_->Get(), LIRC_SET_SEND_MODE, &mode);
  if (abilities_.SetsCarrier) WriteCarrier();
}

void LircLine::WriteCarrier() {
  auto carrier = static_cast<std::uint32_t>(carrier_);
  calls_.Ioctl(device_->Get(), LIRC_SET_SEND_CARRIER, &carrier);
}

void LircLine::SetCarrier(std::int32_t hertz) {
  const bool isSame = std::exchange(carrier_, hertz) == hertz;
  if (!device_ || isSame) return;
  if (abilities_.SetsCarrier) {
    WriteCarrier();
  } else if (abilities_.Sends) {
    carrierNote_.Tell([this](const std::string& text) { Tell(text); }, Node(), hertz);
  }
}

bool LircLine::OpenDevice(Refusal& refusal) {
  const int descriptor = calls_.Open(Node(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    const int error = errno;
    refusal = error == EBUSY ? WhyBusy(Node(), HolderOfDevice(Node())) : Refusal{WhyNoAccess(Node(), error)};
    return false;
  }
  device_.emplace(calls_, descriptor);
  refusal = {};
  Ask(refusal.Why);
  if (!refusal.Why.empty()) device_.reset();
  heard_.clear();
  losses_ = {};
  skipping_ = false;
  silence_ = 0;
  heardTill_ = Time(0);
  emptyAt_ = calls_.Now();
  return IsOpen();
}

/// A device that only sends is never read, so nothing else would show that it has gone.
void LircLine::NoticeLoss() {
  pollfd device = {device_->Get(), POLLIN, 0};
  if (calls_.Poll(&device, 1, 0) > 0 && (device.revents & (POLLHUP | POLLERR)) != 0) Lose();
}

std::string LircLine::Warning(Use use) const {
  const bool able = use == Use::Listen ? abilities_.Receives : abilities_.Sends;
  return able ? std::string() : DescribeInabilities(Node(), abilities_);
}

milliseconds LircLine::MayRest() {
  return IsOpen() && !heard_.empty() ? milliseconds::zero() : NodeLine::MayRest();
}

void LircLine::AddLength(bool mark, int length, Time end) {
  if (skipping_) {
    skipping_ = mark || length < kFrameGapUs;
    return;
  }
  if (heard_.empty() && !mark) return;
  if (heard_.empty()) heardFrom_ = end - microseconds(length);
  const bool nextIsMark = heard_.size() % 2 == 0;
  if (mark == nextIsMark) {
    if (heard_.size() < kMostHeard) heard_.push_back(length);
  } else {
    heard_.back() += length;
  }
}

/// After a time-out the kernel reports only the silence since then. Older kernels report all of it, which
/// would end in the future if the time-out were added.
int LircLine::WholeSilence(int length, Time now) {
  const int before = std::exchange(silence_, 0);
  const Time end = heardTill_ + microseconds(before) + microseconds(length);
  return end > now + microseconds(before / 2) ? length : length + before;
}

/// What the device reports now cannot have ended before the last look that found nothing to read. Where the
/// sum of the lengths ends long before that, the device has left out a silence.
LircLine::Time LircLine::EndOf(int length, Time now) const {
  const Time end = heardTill_ + microseconds(length);
  return end + kTellingTime < emptyAt_ ? now : std::clamp<Time>(end, emptyAt_, now);
}

void LircLine::Take(std::uint32_t item, Time now) {
  int length = static_cast<int>(item & LIRC_VALUE_MASK);
  switch (item & LIRC_MODE2_MASK) {
    case LIRC_MODE2_PULSE:
    case LIRC_MODE2_SPACE: {
      const bool mark = (item & LIRC_MODE2_MASK) == LIRC_MODE2_PULSE;
      if (!mark) length = WholeSilence(length, now);
      heardTill_ = EndOf(length, now);
      AddLength(mark, length, heardTill_);
      break;
    }
    case LIRC_MODE2_TIMEOUT:
      silence_ = length;
      heardTill_ = std::min<Time>(heardTill_, now - microseconds(length));
      break;
    case LIRC_MODE2_OVERFLOW:
      TakeOverflow(now);
      break;
    default:
      // A carrier has no length.
      break;
  }
}

/// What is left of a press would read as another, shorter command.
void LircLine::TakeOverflow(Time now) {
  heardTill_ = now;
  silence_ = 0;
  heard_.clear();
  skipping_ = overflowed_ = true;
  // What it did not keep of our own sending is no press.
  if (IsDeaf() || losses_.Overflows++ > 0) return;
  Tell(Node() +
       " could not keep all that it heard, as on a busy machine: a press was lost. keplo ports tells how to "
       "give captures priority.");
}

void LircLine::ReadItems() {
  if (!device_ || !abilities_.Receives) return;
  std::array<std::uint32_t, 256> items{};
  Time before{0};
  for (;;) {
    before = calls_.Now();
    const ssize_t size = calls_.Read(device_->Get(), items.data(), sizeof items);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0 && errno != EAGAIN) Lose();
    if (size <= 0) break;
    const Time now = calls_.Now();
    std::for_each_n(items.begin(), static_cast<std::size_t>(size) / sizeof items[0],
                    [&](std::uint32_t item) { Take(item, now); });
  }
  emptyAt_ = before;
}

bool LircLine::SignalWaits() {
  ReadItems();
  if (IsDeaf()) Forget();
  return !heard_.empty();
}

void LircLine::WaitForNews(Time until) {
  const Time left = until - calls_.Now();
  if (!device_ || left.count() <= 0) return;
  pollfd input = {device_->Get(), POLLIN, 0};
  calls_.Poll(&input, 1, static_cast<int>(std::chrono::ceil<milliseconds>(left).count()));
  if ((input.revents & (POLLHUP | POLLERR)) != 0) return Lose();
  ReadItems();
}

/// A key that is held goes on: what comes next counts only from the next silence on, which is told with it.
void LircLine::Forget() {
  ReadItems();
  heard_.clear();
  skipping_ = calls_.Now() - heardTill_ < kEndSilence;
}

/// Collects a press as it comes in.
/// @param length of the buffer, microseconds
/// @return how many of the lengths that were heard it has used up
std::size_t LircLine::TakePress(PulseTrain& press, double length) {
  double time = 0;
  std::size_t used = 0;
  overflowed_ = false;
  while (!overflowed_) {
    for (; used < heard_.size() && time < length; ++used) {
      if (used % 2 == 1 && heard_[used] >= kPressGap) return used;
      press.push_back(heard_[used]);
      time += heard_[used];
    }
    const Time end = heardTill_ + kEndSilence;
    if (time >= length || !IsOpen() || calls_.Now() >= end) return used;
    WaitForNews(end);
  }
  return 0;  // the device lost items, and what was heard went with them
}

/// Keeps what was heard after a press: it begins with the space after the press, or with the next frame
/// where the buffer ended in the space before it; else the buffer has cut a frame, and what counts next is
/// the one after.
void LircLine::LeaveOver(std::size_t used, bool cutsFrame) {
  const auto first = heard_.begin() + static_cast<std::ptrdiff_t>(used);
  const std::vector<int> left(first, heard_.end());
  Time end = heardFrom_ + microseconds(std::accumulate(heard_.begin(), first, std::int64_t{0}));
  skipping_ = cutsFrame;
  heard_.clear();
  for (std::size_t i = 0; i < left.size(); ++i) {
    end += microseconds(left[i]);
    AddLength((used + i) % 2 == 0, left[i], end);
  }
}

bool LircLine::Capture(std::span<char> buffer, std::int32_t delay) {
  ReadItems();
  if (heard_.empty()) return false;
  const LineOptions options = CaptureOptions(delay);
  PulseTrain press;
  const double length = static_cast<double>(buffer.size() * 8) * options.SampleTime;
  const std::size_t used = TakePress(press, length);
  if (!IsOpen()) heard_.clear();
  // What an overflow has torn may read as another, shorter command.
  if (!IsOpen() || used == 0) return false;
  NoteOrigin(heardFrom_, press, microseconds(static_cast<std::int64_t>(length)));
  const double heard = std::accumulate(press.begin(), press.end(), 0.0);
  const bool full = heard >= length;
  LeaveOver(used, full && !(used % 2 == 0 && press.back() >= kFrameGapUs));
  const double silence = used % 2 == 0 ? 0.0 : microseconds(kEndSilence).count();
  CopySignal(SignalOfPress(Press(press), buffer.size(), options),
             static_cast<std::size_t>((heard + silence) / options.SampleTime), buffer);
  toldLengths_ = std::move(press);
  return true;
}

/// The kernel holds the write for the length of the signal, but counts in ticks of its own: it returns up to
/// 32 ms late, when the next part may be due.
/// @param over when the signal is over
/// @return 0, or why the device did not take it
int LircLine::Write(const std::vector<unsigned>& lengths, Time over) {
  const std::size_t size = lengths.size() * sizeof lengths[0];
  for (;;) {
    errno = 0;
    const ssize_t written = calls_.WriteUntil(device_->Get(), lengths.data(), size, over);
    const int error = errno;
    const Time now = calls_.Now();
    if (written == static_cast<ssize_t>(size)) return 0;
    const bool mayPass = error == EINTR || error == EAGAIN;
    if (!mayPass || HeldSignals::Pending() || now >= over + kLongestBusy) return error == 0 ? EIO : error;
    calls_.SleepUntil(now + kTryAgain);
  }
}

bool LircLine::Refuse(int error) {
  if (IsGone(error)) {
    Lose();
  } else if (!HeldSignals::Pending()) {
    Tell(WhyNotSent(Node(), error));
  }
  return false;
}

bool LircLine::Send(std::string_view bytes, microseconds slot, std::int32_t /*interfaceType*/) {
  if (!abilities_.Sends) return false;
  const std::vector<LitSlots> lit = LitSlotsOf(bytes);
  const SlotClock clock(calls_, slot, kGetReady);
  std::size_t most = kMostMarks;
  for (std::size_t first = 0; first < lit.size();) {
    const std::size_t end = EndOfPart(lit, first, slot, most);
    const std::vector<unsigned> lengths = LengthsOf(std::span(lit).subspan(first, end - first), slot);
    if (!clock.WaitFor(lit[first].Begin)) return false;
    const int error = Write(lengths, clock.At(lit[end - 1].End));
    const bool mayBeTooLong = error == EINVAL || error == ENOSPC || error == E2BIG;
    if (mayBeTooLong && end - first > 1) {
      most = (end - first) / 2;
      continue;
    }
    if (error != 0) return Refuse(error);
    first = end;
  }
  return clock.WaitFor(bytes.size() * 8);
}

}  // namespace keplo
