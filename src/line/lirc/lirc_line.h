#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "line/carrier_note.h"
#include "line/node_line.h"
#include "signal/protocol_params.h"

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
class LircLine : public NodeLine {
 public:
  LircLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind, LineOptions options,
           TellUser tell);

  /// What the device that was opened last can do.
  const LircAbilities& Abilities() const { return abilities_; }

  LineLosses Losses() const override { return losses_; }
  std::optional<int> ModemLines() override { return std::nullopt; }
  int WakeDescriptor() override { return device_ ? device_->Get() : -1; }
  std::chrono::milliseconds MayRest() override;
  void Forget() override;

  void SetMode(std::int32_t /*mode*/) override {}
  void DTR(std::int32_t /*state*/) override {}
  void RTS(std::int32_t /*state*/) override {}
  void TXD(std::int32_t /*state*/) override {}
  void SetCarrier(std::int32_t hertz) override;
  void SendChr(char /*character*/) override {}
  std::int32_t ReadChr(char& /*character*/) override { return 0; }

 protected:
  bool IsOpen() const override { return device_.has_value(); }
  bool OpenDevice(Refusal& refusal) override;
  void CloseDevice() override { device_.reset(); }
  void NoticeLoss() override;
  std::string Warning(Use use) const override;
  bool Hears() const override { return abilities_.Receives; }
  bool SignalWaits() override;
  bool Capture(std::span<char> buffer, std::int32_t delay) override;
  void WaitForNews(Time until) override;
  bool Send(std::string_view bytes, std::chrono::microseconds slot, std::int32_t interfaceType) override;

 private:
  void Ask(std::string& why);
  void WriteCarrier();
  void ReadItems();
  void Take(std::uint32_t item, Time now);
  void AddLength(bool mark, int length, Time end);
  int WholeSilence(int length, Time now);
  Time EndOf(int length, Time now) const;
  void LeaveOver(std::size_t used, bool cutsFrame);
  std::size_t TakePress(PulseTrain& press, double length);
  int Write(const std::vector<unsigned>& lengths, Time over);
  void TakeOverflow(Time now);
  bool Refuse(int error);

  std::optional<DeviceDescriptor> device_;
  LircAbilities abilities_;
  CarrierNote carrierNote_;
  std::int32_t carrier_ = kUsualCarrier;  // Hz, of what is sent
  bool skipping_ = false;                 // up to the next silence between frames
  bool overflowed_ = false;
  LineLosses losses_;
  std::vector<int> heard_;  // microseconds, mark first
  Time heardFrom_{0};       // when the first of them began
  Time heardTill_{0};       // when the last item was over, by the sum of the lengths
  Time emptyAt_{0};         // when the device had nothing more to tell
  int silence_ = 0;         // microseconds, reported since by a time-out of the device
};

}  // namespace keplo
