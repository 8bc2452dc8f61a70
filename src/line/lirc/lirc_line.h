#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "line/beeper.h"
#include "line/device_line.h"
#include "line/shaping/shaper.h"

namespace keplo {

/// What an infrared device of the kernel can do.
struct LircAbilities {
  bool Receives = false;  // lengths of marks and spaces
  bool Sends = false;     // the same
  bool SetsCarrier = false;
  bool OnlyScancodes = false;
};

/// @param features the answer to LIRC_GET_FEATURES
LircAbilities AbilitiesOf(std::uint32_t features);

/// What a device cannot do, in one sentence that says what to use instead; empty for one that receives and
/// sends.
std::string DescribeInabilities(const std::string& device, const LircAbilities& abilities);

/// An infrared device of the kernel, /dev/lircN: receives lengths and sends them.
class LircLine : public DeviceLine {
 public:
  /// @param receiverKind as in the settings, which own it; tells the level at which the line seems to rest
  LircLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind, LineOptions options,
           TellUser tell);

  /// What the device that was opened last can do.
  const LircAbilities& Abilities() const { return abilities_; }

  std::string WhyNot() const override { return whyNot_; }
  LineLosses Losses() const override { return {}; }
  int WakeDescriptor() override { return device_ ? device_->Get() : -1; }
  std::chrono::milliseconds MayRest() override;
  void Forget() override;

  std::int32_t OpenCom(std::int32_t port) override;
  void CloseCom() override;
  void SetMode(std::int32_t /*mode*/) override {}
  void DTR(std::int32_t /*state*/) override {}
  void RTS(std::int32_t /*state*/) override {}
  void TXD(std::int32_t /*state*/) override {}
  std::int32_t DCD() override;
  void IRMonitor(std::span<char> buffer, std::int32_t delay) override;
  void IRMonitorN(std::span<char> buffer, std::int32_t delay) override;
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override;
  void SendChr(char /*character*/) override {}
  std::int32_t ReadChr(char& /*character*/) override { return 0; }
  std::int16_t CheckZone(char& character) override;
  void uDelay(std::int32_t microseconds) override;
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override;

 private:
  bool Ask();
  void Lose();
  void ReopenWhenBack();
  void ReadItems();
  void Take(std::uint32_t item);
  void AddLength(bool mark, int length);
  bool WaitForItems(std::chrono::nanoseconds until);
  void ForgetSignals();
  bool Capture(std::span<char> buffer, std::int32_t delay);
  bool WriteLengths(const std::vector<unsigned>& lengths);

  DeviceCalls& calls_;
  const std::string path_;
  const std::int16_t* receiverKind_;
  LineOptions options_;
  TellUser tell_;
  Beeper beeper_;

  std::optional<DeviceDescriptor> device_;
  LircAbilities abilities_;
  std::string whyNot_;
  bool lost_ = false;
  bool refusalTold_ = false;
  bool skipping_ = false;   // up to the next silence between frames
  std::vector<int> heard_;  // microseconds, mark first
  std::chrono::nanoseconds lastItem_{0};
  std::chrono::nanoseconds deafUntil_{0};  // what comes before is our own signal
  std::chrono::nanoseconds restSince_{0};
  std::chrono::nanoseconds nextOpening_{0};
};

}  // namespace keplo
