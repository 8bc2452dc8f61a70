#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "line/beeper.h"
#include "line/device_line.h"
#include "line/port_map.h"
#include "line/replay_line.h"
#include "line/rooms/room_messages.h"

namespace keplo {

/// The lines of this machine behind one Win32Ser: a COM number opens what the port map names.
class PortLine : public DeviceLine {
 public:
  /// @param map is asked again for a port that is not in it: its device may come later
  /// @param receiverKind as in the settings, which own it
  /// @param rooms opens the messages of a line that listens to a broker
  PortLine(std::unique_ptr<DeviceCalls> calls, std::function<PortMap()> map, const std::int16_t& receiverKind,
           LineOptions options, TellUser tell, OpenRoomMessages rooms = {});

  /// @param ofSettings the port of the settings, which is waited for while it has no device; none: the port
  /// that is asked for first
  /// @param inPlace the port that is opened where that of the settings is asked for
  void FollowSettings(const std::int32_t* ofSettings, std::optional<std::int32_t> inPlace);

  std::string WhyNot() const override { return device_ ? device_->WhyNot() : whyNot_; }
  bool IsInUse() const override { return device_ && device_->IsInUse(); }
  /// The open port and its device, or why there is none, in a sentence for a person.
  std::string What() const;
  LineLosses Losses() const override { return device_ ? device_->Losses() : LineLosses{}; }
  bool Sent() const override { return device_ ? device_->Sent() : line_ && !missing_; }
  std::optional<int> ModemLines() override { return device_ ? device_->ModemLines() : std::nullopt; }
  int WakeDescriptor() override;
  std::chrono::milliseconds MayRest() override;
  void Forget() override {
    if (device_) device_->Forget();
  }
  void LookAfterDevice() override;

  std::int32_t OpenCom(std::int32_t port) override;
  void CloseCom() override;
  void SetMode(std::int32_t mode) override;
  void DTR(std::int32_t state) override;
  void RTS(std::int32_t state) override;
  void TXD(std::int32_t state) override;
  std::int32_t DCD() override;
  void IRMonitor(std::span<char> buffer, std::int32_t delay) override;
  void IRMonitorN(std::span<char> buffer, std::int32_t delay) override;
  double SampleTime(std::int32_t delay) const override {
    return line_ ? line_->SampleTime(delay) : SampleTimeOf(delay);
  }
  const SignalOrigin* Origin() const override { return line_ ? line_->Origin() : nullptr; }
  std::span<const int> ToldLengths() const override {
    return line_ ? line_->ToldLengths() : std::span<const int>();
  }
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override;
  void SetCarrier(std::int32_t hertz) override;
  void SendChr(char character) override;
  std::int32_t ReadChr(char& character) override;
  std::int16_t CheckZone(char& character) override;
  void uDelay(std::int32_t microseconds) override;
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override;

 private:
  std::int32_t InPlaceOf(std::int32_t asked);
  bool IsOfSettings(std::int32_t asked) const;
  std::int32_t Open(const MappedPort& port);
  Win32Ser* Used();
  std::unique_ptr<Win32Ser> MakeLine(const MappedPort& port);
  std::int32_t DoWithout(std::int32_t asked);

  std::unique_ptr<DeviceCalls> calls_;
  DeviceDescriptor wakes_;  // an epoll instance, which stays while devices come and go
  int watched_ = -1;        // the descriptor in it
  std::function<PortMap()> readMap_;
  PortMap map_;
  const std::int16_t* receiverKind_;
  LineOptions options_;
  TellUser tell_;
  OpenRoomMessages rooms_;
  Beeper beeper_;
  std::unique_ptr<Win32Ser> line_;    // none while no port is open
  DeviceLine* device_ = nullptr;      // the same, where it is a device
  std::optional<MappedPort> unused_;  // taken without an open, which comes with its first use
  std::string open_;                  // port and device, for a person; empty while none is open
  std::string whyNot_;

  std::optional<std::int32_t> inPlace_, replaced_;  // port of this run, and the one that it stands in for
  const std::int32_t* ofSettings_ = nullptr;
  std::optional<std::int32_t> missing_;  // port that has no device yet
  std::chrono::nanoseconds nextLook_{0};
};

}  // namespace keplo
