#pragma once

#include <linux/serial.h>
#include <termios.h>

#include <memory>
#include <optional>
#include <string>

#include "line/device_access.h"
#include "line/device_calls.h"

namespace keplo {

/// An open serial port, for raw bytes and modem lines: locked against other programs, never hung up by its
/// modem lines, and left as it was found.
///
/// Everything that fails because the device is gone answers with an empty result or false.
class SerialPort {
 public:
  /// How characters go out and come in.
  enum class Speed {
    Carrier,    // 115,200 baud, 7 bits: a character is three periods of a 38.4 kHz carrier
    Characters  // 9,600 baud, 8 bits: the zone hardware
  };

  /// What an open would meet, as far as it is known without one.
  static Refusal Foresee(const std::string& device);
  /// Opens a port that has hardware; clears DTR, which the driver raises when a port is opened.
  /// @param refusal written
  /// @return none if the port does not open
  static std::unique_ptr<SerialPort> Open(DeviceCalls& calls, const std::string& device, Refusal& refusal);

  ~SerialPort();
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  int Descriptor() const { return descriptor_.Get(); }

  /// Whether there are lines beside those for characters: nothing is received or sent on DTR without.
  bool HasModemLines() const { return hasModemLines_; }
  /// The modem lines as TIOCM_ bits.
  std::optional<int> Lines() const;
  /// Does nothing on a port without modem lines.
  /// @param line TIOCM_RTS or TIOCM_DTR
  bool SetLine(int line, bool on) const;
  /// The transmit line as a steady level: on is the level of a break.
  bool SetBreak(bool on) const;
  /// What the driver has counted; none if it does not count edges.
  std::optional<serial_icounter_struct> Counters() const;

  bool SetSpeed(Speed speed);
  /// Writes all bytes without a gap between them, and waits while the driver's buffer is full. Throws them
  /// away when the program is asked to end.
  bool WriteAll(const std::string& bytes) const;
  /// Waits until what was written has gone out.
  void Drain() const;
  /// Throws away what has come in and was not read.
  void DropInput() const;

 private:
  SerialPort(DeviceCalls& calls, int descriptor, std::string lockFile);
  bool FindModemLines();

  DeviceCalls& calls_;
  std::string lockFile_;  // empty: none of ours
  DeviceDescriptor descriptor_;
  termios found_{};
  termios set_{};
  bool configured_ = false;
  bool hasModemLines_ = true;
};

}  // namespace keplo
