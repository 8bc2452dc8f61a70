#include "line/port_line.h"

#include <sys/epoll.h>

#include <algorithm>
#include <utility>

#include "formats/recording.h"
#include "line/lirc/lirc_line.h"
#include "line/rooms/room_line.h"
#include "line/serial/serial_line.h"
#include "line/slot_clock.h"
#include "line/zone_answer.h"
#include "typed_command.h"

namespace keplo {

namespace {

constexpr std::chrono::milliseconds kNothingToWatch{60'000};
constexpr std::chrono::seconds kLookAgain{2};  // for the device of a port that has none

}  // namespace

PortLine::PortLine(std::unique_ptr<DeviceCalls> calls, std::function<PortMap()> map,
                   const std::int16_t& receiverKind, LineOptions options, TellUser tell,
                   OpenRoomMessages rooms)
    : calls_(std::move(calls)),
      wakes_(*calls_, epoll_create1(EPOLL_CLOEXEC)),
      readMap_(std::move(map)),
      map_(readMap_()),
      receiverKind_(&receiverKind),
      options_(options),
      tell_(std::move(tell)),
      rooms_(std::move(rooms)),
      beeper_(*calls_, tell_) {}

std::unique_ptr<Win32Ser> PortLine::MakeLine(const MappedPort& port) {
  if (port.Type == MappedPort::Kind::Serial) {
    auto line = std::make_unique<SerialLine>(*calls_, port.Device, *receiverKind_, options_, tell_);
    device_ = line.get();
    return line;
  }
  if (port.Type == MappedPort::Kind::Lirc) {
    auto line = std::make_unique<LircLine>(*calls_, port.Device, *receiverKind_, options_, tell_);
    device_ = line.get();
    return line;
  }
  if (port.Type == MappedPort::Kind::Mqtt) {
    auto line = std::make_unique<RoomLine>(*calls_, port.Rooms, rooms_, *receiverKind_, options_, tell_);
    device_ = line.get();
    return line;
  }
  std::vector<Recording> recordings;
  for (const std::string& file : port.Files) recordings.push_back(LoadRecording(file));
  auto line = std::make_unique<ReplayLine>(std::move(recordings), *receiverKind_, options_);
  line->PlayAgainst(std::make_shared<SteadyLineClock>());
  return line;
}

void PortLine::FollowSettings(const std::int32_t* ofSettings, std::optional<std::int32_t> inPlace) {
  ofSettings_ = ofSettings;
  inPlace_ = inPlace;
}

std::int32_t PortLine::InPlaceOf(std::int32_t asked) {
  if (!inPlace_) return asked;
  if (!replaced_) replaced_ = ofSettings_ ? *ofSettings_ : asked;
  return asked == *replaced_ ? *inPlace_ : asked;
}

bool PortLine::IsOfSettings(std::int32_t asked) const {
  return ofSettings_ == nullptr || asked == *ofSettings_ || asked == replaced_;
}

std::int32_t PortLine::OpenCom(std::int32_t asked) {
  const std::int32_t port = InPlaceOf(asked);
  CloseCom();
  const auto mapped = std::find_if(map_.Ports.begin(), map_.Ports.end(),
                                   [port](const MappedPort& candidate) { return candidate.Port == port; });
  // A caller that tries which ports there are still waits for the one of the settings.
  if (mapped == map_.Ports.end()) return DoWithout(ofSettings_ ? *ofSettings_ : asked);
  whyNot_.clear();
  // Opening a port pulses its lines: a caller that tries all numbers would reset every board on an adapter.
  if (!mapped->IsFoundOnUsb || IsOfSettings(asked)) return Open(*mapped);
  whyNot_ = SerialPort::Foresee(mapped->Device).Why;
  if (whyNot_.empty()) unused_ = *mapped;
  return unused_ ? 1 : 0;
}

std::int32_t PortLine::Open(const MappedPort& port) {
  try {
    line_ = MakeLine(port);
  } catch (const Failure& failure) {
    whyNot_ = failure.what();
    return 0;
  }
  open_ =
      "COM " + std::to_string(port.Port) + " is " + (device_ ? port.Device : "recorded key presses") + ".";
  // A device that does not open stays, since it opens by itself when it is there.
  return line_->OpenCom(port.Port);
}

/// The line, opened at last where a number was taken without an open; none while no port is open.
Win32Ser* PortLine::Used() {
  if (const auto port = std::exchange(unused_, std::nullopt)) Open(*port);
  return line_.get();
}

/// @param asked the number that the device will be opened for when it comes
std::int32_t PortLine::DoWithout(std::int32_t asked) {
  const std::int32_t port = InPlaceOf(asked);
  missing_ = asked;
  nextLook_ = calls_->Now() + kLookAgain;
  whyNot_ = !map_.WhyEmpty.empty() ? map_.WhyEmpty
                                   : "COM " + std::to_string(port) + " has no device on this machine. " +
                                         TypedCommand("ports", map_.AppPath) + " lists those that have.";
  return 0;
}

void PortLine::LookAfterDevice() {
  if (device_) return device_->LookAfterDevice();
  if (!missing_ || calls_->Now() < nextLook_) return;
  nextLook_ = calls_->Now() + kLookAgain;
  map_ = readMap_();
  const std::string before = whyNot_;
  if (OpenCom(*missing_) == 1) {
    RTS(-1);
    TXD(0);
  }
  // A device that came may be one that does not open yet, or one of another number.
  if (tell_ && What() != before) tell_(What());
}

std::string PortLine::What() const {
  if (!WhyNot().empty()) return WhyNot();
  return line_ ? open_ : "No port is open.";
}

void PortLine::CloseCom() {
  device_ = nullptr;
  line_.reset();
  missing_.reset();
  unused_.reset();
}

int PortLine::WakeDescriptor() {
  const int current = device_ ? device_->WakeDescriptor() : -1;
  if (watched_ >= 0 && watched_ != current) epoll_ctl(wakes_.Get(), EPOLL_CTL_DEL, watched_, nullptr);
  epoll_event readable{};
  readable.events = EPOLLIN;
  // A descriptor that was closed has left the set, even if its number is in use again; one that is still in
  // the set is refused, which does no harm.
  if (current >= 0) epoll_ctl(wakes_.Get(), EPOLL_CTL_ADD, current, &readable);
  watched_ = current;
  return wakes_.Get();
}

std::chrono::milliseconds PortLine::MayRest() {
  if (device_) return device_->MayRest();
  if (missing_) return kLookAgain;
  return line_ || unused_ ? std::chrono::milliseconds::zero() : kNothingToWatch;
}

void PortLine::SetMode(std::int32_t mode) {
  if (Win32Ser* const line = Used()) line->SetMode(mode);
}

void PortLine::DTR(std::int32_t state) {
  if (Win32Ser* const line = Used()) line->DTR(state);
}

void PortLine::RTS(std::int32_t state) {
  if (Win32Ser* const line = Used()) line->RTS(state);
}

void PortLine::TXD(std::int32_t state) {
  if (Win32Ser* const line = Used()) line->TXD(state);
}

std::int32_t PortLine::DCD() {
  if (missing_) LookAfterDevice();
  if (Win32Ser* const line = Used()) return line->DCD();
  return *receiverKind_ == 0 ? 1 : 0;
}

void PortLine::IRMonitor(std::span<char> buffer, std::int32_t delay) {
  if (Win32Ser* const line = Used()) line->IRMonitor(buffer, delay);
}

void PortLine::IRMonitorN(std::span<char> buffer, std::int32_t delay) {
  if (Win32Ser* const line = Used()) line->IRMonitorN(buffer, delay);
}

std::int32_t PortLine::IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  Win32Ser* const line = Used();
  return line != nullptr ? line->IRRecord(buffer, delay, limit) : 0;
}

std::int32_t PortLine::IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) {
  Win32Ser* const line = Used();
  return line != nullptr ? line->IRRecordN(buffer, delay, limit) : 0;
}

void PortLine::IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) {
  if (Win32Ser* const line = Used()) line->IRSend(bytes, pulse, interfaceType);
}

void PortLine::SetCarrier(std::int32_t hertz) {
  if (Win32Ser* const line = Used()) line->SetCarrier(hertz);
}

void PortLine::SendChr(char character) {
  if (Win32Ser* const line = Used()) line->SendChr(character);
}

std::int32_t PortLine::ReadChr(char& character) {
  Win32Ser* const line = Used();
  return line != nullptr ? line->ReadChr(character) : 0;
}

std::int16_t PortLine::CheckZone(char& character) { return ZoneOfAnswer(character); }

void PortLine::uDelay(std::int32_t microseconds) {
  if (device_) return device_->uDelay(microseconds);
  if (missing_) return;  // the device will be found whenever it comes
  SleepUnlessEnded(*calls_, calls_->Now() + std::chrono::microseconds(microseconds));
}

void PortLine::SpeakBeep(std::int32_t frequency, std::int32_t duration) {
  if (device_) return device_->SpeakBeep(frequency, duration);
  beeper_.Sound(frequency, duration);
}

}  // namespace keplo
