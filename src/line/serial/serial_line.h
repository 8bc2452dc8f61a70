#pragma once

#include <memory>
#include <optional>
#include <string>

#include "line/carrier_note.h"
#include "line/node_line.h"
#include "line/serial/edge_log.h"
#include "line/serial/edge_watch.h"
#include "line/serial/serial_port.h"

namespace keplo {

struct KnownBeginning;

/// A receiver on the carrier-detect line of a serial port, and a transmitter on its DTR or TxD line.
///
/// Where the driver reports edges, a capture is made of their times and begins with the first edge, however
/// late it is asked for. Any other port is sampled.
class SerialLine : public NodeLine {
 public:
  /// @param device such as /dev/ttyS0; for the others see NodeLine
  SerialLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind, LineOptions options,
             TellUser tell);

  LineLosses Losses() const override { return losses_; }
  std::optional<int> ModemLines() override;
  int WakeDescriptor() override { return watch_ ? log_.Descriptor() : -1; }
  std::chrono::milliseconds MayRest() override;
  void Forget() override;

  void SetMode(std::int32_t mode) override;
  void DTR(std::int32_t state) override;
  void RTS(std::int32_t state) override;
  void TXD(std::int32_t state) override;
  void SetCarrier(std::int32_t hertz) override;
  void SendChr(char character) override;
  std::int32_t ReadChr(char& character) override;

 protected:
  bool IsOpen() const override { return port_ != nullptr; }
  bool OpenDevice(Refusal& refusal) override;
  void CloseDevice() override;
  void NoticeLoss() override;
  std::string Warning(Use use) const override;
  bool Hears() const override { return port_->HasModemLines(); }
  bool SignalWaits() override;
  bool Capture(std::span<char> buffer, std::int32_t delay) override;
  void WaitForNews(Time until) override;
  bool Send(std::string_view bytes, std::chrono::microseconds slot, std::int32_t interfaceType) override;

 private:
  bool HungUp();
  bool HasEdges() const;
  std::optional<bool> Level();
  bool EdgesWait(bool level);
  bool LightIsOn(bool level);
  bool IsQuiet();
  void NoticeStuck();
  bool CaptureEdges(std::span<char> buffer, const LineOptions& options);
  KnownBeginning JustTold(Time now);
  bool CaptureSamples(std::span<char> buffer, const LineOptions& options);
  bool Worked(bool worked);
  void Drop(std::size_t edges);

  EdgeLog log_;
  std::unique_ptr<SerialPort> port_;
  std::unique_ptr<EdgeWatch> watch_;  // none for a driver that tells no edges
  std::int32_t mode_ = 1;
  /// When the line was last seen to change, where that may have been inside a signal.
  std::optional<Time> inside_;
  std::optional<bool> stuckAt_;  // level of a line that stayed away from rest for a whole capture
  bool stuckTold_ = false;
  CarrierNote carrierNote_;
  LineLosses losses_;
  std::uint64_t missed_ = 0;  // edges so far, when some were dropped or captured last
  Time opened_{0};
  int sampledUntold_ = 0;  // signals so far of which the driver has reported no edge
};

}  // namespace keplo
