#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "line/beeper.h"
#include "line/device_access.h"
#include "line/device_calls.h"
#include "line/device_line.h"
#include "line/shaping/shaper.h"
#include "signal/signal_origin.h"

namespace keplo {

/// Silence that ends a capture. Real remotes leave up to 130 ms between two frames of one press; more than
/// 150 ms from a press to its event is felt.
inline constexpr std::chrono::milliseconds kEndSilence{136};
/// Longer than any space inside a frame (4.5 ms after a leader), shorter than any between two frames.
inline constexpr std::chrono::milliseconds kFrameGap{6};
/// How long after sending the receiver still tells of it.
inline constexpr std::chrono::milliseconds kOwnEcho{30};

/// A line that stands on a node of /dev, and what all of those have in common: whether the device is missing
/// from the start or goes later, it is told once and opened by itself when it is there.
class NodeLine : public DeviceLine {
 public:
  /// @param receiverKind 0 DCDStandard, 1 IRMouse; the settings own it, and a change there counts at once
  /// @param tell is only called from calls of this line
  NodeLine(DeviceCalls& calls, std::string node, const std::int16_t& receiverKind, LineOptions options,
           TellUser tell);

  std::string WhyNot() const override { return closed_.Why; }
  bool IsInUse() const override { return closed_.InUse; }
  bool Sent() const override { return sent_; }
  std::chrono::milliseconds MayRest() override;
  void LookAfterDevice() override;

  /// @param port any number: the line has one device
  std::int32_t OpenCom(std::int32_t port) override;
  void CloseCom() override;
  std::int32_t DCD() override;
  void IRMonitor(std::span<char> buffer, std::int32_t delay) override;
  void IRMonitorN(std::span<char> buffer, std::int32_t delay) override;
  const SignalOrigin* Origin() const override { return origin_ ? &*origin_ : nullptr; }
  std::span<const int> ToldLengths() const override { return toldLengths_; }
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override;
  std::int16_t CheckZone(char& character) override;
  void uDelay(std::int32_t microseconds) override;
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override;

 protected:
  /// What a device is asked for.
  enum class Use { Listen, Send };
  using Time = std::chrono::nanoseconds;

  virtual bool IsOpen() const = 0;
  /// @param refusal written if the device does not open
  virtual bool OpenDevice(Refusal& refusal) = 0;
  virtual void CloseDevice() = 0;
  /// Calls Lose if the open device went.
  virtual void NoticeLoss() = 0;
  /// What the user should know before using the open device so; empty if nothing.
  virtual std::string Warning(Use use) const = 0;

  /// Whether the open device can hear anything at all.
  virtual bool Hears() const { return true; }
  /// Whether a signal waits or is there, on the open device.
  virtual bool SignalWaits() = 0;
  /// Fills the buffer with the signal that waits, and tells its origin if it knows it.
  /// @return false if there is none, or the device went
  virtual bool Capture(std::span<char> buffer, std::int32_t delay) = 0;
  /// Waits a little for news of the open device.
  virtual void WaitForNews(Time until) = 0;
  /// Sends on the open device.
  /// @return false if the signal did not go out, which is told
  virtual bool Send(std::string_view bytes, std::chrono::microseconds slot, std::int32_t interfaceType) = 0;

  /// The device is gone.
  void Lose();
  void Tell(const std::string& text) const;
  /// Warns once of what the device cannot do well.
  void WarnOnce(Use use);
  /// Whether what comes in now may be of our own sending.
  bool IsDeaf() { return calls_.Now() < deafUntil_; }
  /// The level of the line without a signal.
  bool RestLevel() const { return *receiverKind_ == 0; }
  const std::string& Node() const { return node_; }
  /// The options of the line for captures at a setting of PROCDELAY.
  LineOptions CaptureOptions(std::int32_t delay) const;

  /// Takes the times of the marks of a press for the origin of the capture.
  /// @param most what the buffer holds
  void NoteOrigin(Time begin, Pulses press, std::chrono::microseconds most);

  DeviceCalls& calls_;
  std::optional<SignalOrigin> origin_;  // of the last capture
  PulseTrain toldLengths_;              // of the last capture; empty where it was sampled

 private:
  bool Ready();

  const std::string node_;
  const std::int16_t* receiverKind_;
  LineOptions options_;
  TellUser tell_;
  Beeper beeper_;

  Refusal closed_;       // why it is, while the device does not work
  bool wanted_ = false;  // was asked for, so it is opened when it is there
  bool lost_ = false;    // and was open before
  bool sent_ = false;
  bool refusalTold_ = false;
  bool listenWarned_ = false, sendWarned_ = false;
  Time restSince_{0};
  Time nextOpening_{0};
  Time deafUntil_{0};
};

/// Copies a signal and the silence that was heard after it into a buffer; the rest of the buffer stays as it
/// is.
/// @param samples that were taken in all
void CopySignal(const std::string& signal, std::size_t samples, std::span<char> buffer);

}  // namespace keplo
