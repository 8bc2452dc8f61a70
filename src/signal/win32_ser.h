#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>

#include "signal/sample_time.h"
#include "signal/signal_origin.h"

namespace keplo {

/// Longest time that IRRecord and IRRecordN wait for a signal to begin.
inline constexpr std::chrono::seconds kLongestRecordWait{10};

/// Longest slot that IRSend puts out, microseconds; what is longer is a mistyped pulse.
inline constexpr std::int32_t kLongestSlot = 20'000;

/// The only way to the hardware: receiver, transmitter and zone interface on the lines of one serial port.
///
/// There are no handles; the line keeps its open port to itself. All calls come from one thread and block
/// it until they return. Operations without a result must not fail in a way that needs an answer: on a port
/// that is not open they do nothing. Line states are -1 for asserted and 0 for released.
class Win32Ser {
 public:
  virtual ~Win32Ser() = default;

  /// Opens the numbered port for all later calls, in place of one opened earlier. A port that does not
  /// exist is a failure, never an exception.
  /// @param port n for COM n
  /// @return 1 if the port is open, anything else is a failure
  virtual std::int32_t OpenCom(std::int32_t port) = 0;
  virtual void CloseCom() = 0;

  /// Switches the way the port is used: 1 for capture and sending, 2 for characters with the zone hardware.
  virtual void SetMode(std::int32_t mode) = 0;

  virtual void DTR(std::int32_t state) = 0;
  virtual void RTS(std::int32_t state) = 0;
  /// Sets the transmit line to a steady level.
  virtual void TXD(std::int32_t state) = 0;

  /// Present state of the carrier-detect input, on which the receiver is wired. The DCDStandard receiver
  /// rests at 1, the IRMouse receiver at 0.
  virtual std::int32_t DCD() = 0;

  /// Samples a signal that has begun, from its first sample on, for the DCDStandard receiver, until the
  /// signal has ended or the buffer is full. Each byte takes eight samples, the earliest in the most
  /// significant bit, 1 for carrier present; bytes after the signal stay as they were.
  /// @param delay the PROCDELAY setting; a larger one gives longer samples
  virtual void IRMonitor(std::span<char> buffer, std::int32_t delay) = 0;
  /// The same for the IRMouse receiver.
  virtual void IRMonitorN(std::span<char> buffer, std::int32_t delay) = 0;

  /// Length of one sample of what is captured, microseconds; another than the usual one where a line was told
  /// how its samples are to be made.
  /// @param delay as for IRMonitor
  virtual double SampleTime(std::int32_t delay) const { return SampleTimeOf(delay); }

  /// Where and when the signal of the last capture was on air; none for a line that only knows what it looks
  /// at.
  virtual const SignalOrigin* Origin() const { return nullptr; }

  /// The lengths of the last capture as the line was told them, microseconds, a mark first; empty for a line
  /// that knows samples alone.
  virtual std::span<const int> ToldLengths() const { return {}; }

  /// Waits for a signal, up to kLongestRecordWait, then samples as IRMonitor does. For the DCDStandard
  /// receiver, and for calibration with either receiver.
  /// @param limit largest number of bytes to fill
  /// @return zero if no signal came; only the low 16 bits count
  virtual std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) = 0;
  /// The same for the IRMouse receiver.
  virtual std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) = 0;

  /// Plays the bits of the bytes in order, most significant first, one to a slot, a 1 as carrier on, and
  /// returns when the signal has been sent.
  /// @param pulse slot length, microseconds; a line with a transmitter sends nothing beyond 1 to kLongestSlot
  /// @param interfaceType the ITYPE setting; bit 0 set selects TxD with a software carrier, clear DTR with a
  ///        hardware carrier
  virtual void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) = 0;

  /// Sets the carrier of what is sent from now on. A line with a carrier of its own keeps that, and tells so
  /// once where receivers of the other one would hardly hear it.
  /// @param hertz 0 for light without a carrier
  virtual void SetCarrier(std::int32_t /*hertz*/) {}

  /// Sends one character to the zone hardware.
  virtual void SendChr(char character) = 0;
  /// Reads one character from the zone hardware.
  /// @return zero if none came within the line's own time-out; only the low 16 bits count
  virtual std::int32_t ReadChr(char& character) = 0;
  /// Tells what a received character means.
  /// @return the zone, greater than 0, for a valid answer of the zone hardware
  virtual std::int16_t CheckZone(char& character) = 0;

  /// Pauses the caller.
  virtual void uDelay(std::int32_t microseconds) = 0;
  /// Sounds a beep and returns when it is over.
  /// @param frequency Hz
  /// @param duration milliseconds
  virtual void SpeakBeep(std::int32_t frequency, std::int32_t duration) = 0;
};

}  // namespace keplo
