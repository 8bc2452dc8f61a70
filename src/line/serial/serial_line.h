#pragma once

#include <memory>
#include <optional>
#include <string>

#include "line/beeper.h"
#include "line/device_line.h"
#include "line/serial/edge_log.h"
#include "line/serial/edge_watch.h"
#include "line/serial/serial_port.h"
#include "line/shaping/shaper.h"

namespace keplo {

/// A receiver on the carrier-detect line of a serial port, and a transmitter on its DTR or TxD line.
///
/// A driver that tells edges is waited for: a capture begins with its first edge, however late anybody asks,
/// and is made of edge times. Any other is sampled. A device that goes is told once and opened again when it
/// is back.
class SerialLine : public DeviceLine {
 public:
  /// @param device such as /dev/ttyS0
  /// @param receiverKind 0 DCDStandard, 1 IRMouse; the settings own it, and a change there counts at once
  /// @param tell outlives nothing: it is only called from calls of this line
  SerialLine(DeviceCalls& calls, std::string device, const std::int16_t& receiverKind, LineOptions options,
             TellUser tell);

  std::string WhyNot() const override { return whyNot_; }
  LineLosses Losses() const override;
  int WakeDescriptor() override { return watch_ ? log_.Descriptor() : -1; }
  std::chrono::milliseconds MayRest() override;
  void Forget() override { ForgetSignals(); }

  /// @param port any number: the line has one device
  std::int32_t OpenCom(std::int32_t port) override;
  void CloseCom() override;
  void SetMode(std::int32_t mode) override;
  void DTR(std::int32_t state) override;
  void RTS(std::int32_t state) override;
  void TXD(std::int32_t state) override;
  std::int32_t DCD() override;
  void IRMonitor(std::span<char> buffer, std::int32_t delay) override;
  void IRMonitorN(std::span<char> buffer, std::int32_t delay) override;
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override;
  void SendChr(char character) override;
  std::int32_t ReadChr(char& character) override;
  std::int16_t CheckZone(char& character) override;
  void uDelay(std::int32_t microseconds) override;
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override;

 private:
  bool RestLevel() const { return *receiverKind_ == 0; }
  std::optional<bool> Level();
  std::optional<bool> Present();
  void Check(bool worked);
  void Lose();
  void ReopenWhenBack();
  bool SignalWaits(bool level);
  void ForgetSignals();
  bool Capture(std::span<char> buffer, std::int32_t delay);
  bool CaptureEdges(std::span<char> buffer, std::int32_t delay);
  bool WaitForSignal();

  DeviceCalls& calls_;
  const std::string device_;
  const std::int16_t* receiverKind_;
  LineOptions options_;
  TellUser tell_;
  Beeper beeper_;

  EdgeLog log_;
  std::unique_ptr<SerialPort> port_;
  std::unique_ptr<EdgeWatch> watch_;  // none for a driver that tells no edges
  std::string whyNot_;
  bool lost_ = false;            // the device went; it is opened again when it is back
  bool insideSignal_ = false;    // the last capture ended in it
  std::optional<bool> stuckAt_;  // level of a line that stayed away from rest for a whole capture
  bool refusalTold_ = false;
  std::chrono::nanoseconds restSince_{0};
  std::chrono::nanoseconds nextOpening_{0};
  LineLosses losses_;
};

}  // namespace keplo
