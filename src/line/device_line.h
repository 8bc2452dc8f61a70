#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "line/line_rest.h"
#include "signal/win32_ser.h"

namespace keplo {

/// What a line tells its user, once each: a device that goes or comes back, a signal that cannot be sent.
using TellUser = std::function<void(const std::string&)>;

/// What was lost of the signals on air since the line was opened.
struct LineLosses {
  std::uint64_t Samples = 0;        // taken in all, by sampling
  std::uint64_t FilledSamples = 0;  // missed by a late wake-up
  std::uint64_t LateSamples = 0;    // later than half a sample
  std::uint64_t MissedEdges = 0;    // of those that the driver counted while it was listened to
  std::uint64_t Overflows = 0;      // of the device, each of which lost a press or a part of one
};

/// The line of one device.
class DeviceLine : public Win32Ser, public LineRest {
 public:
  /// @return why the device did not open, or does not work any more, in one sentence; empty while it does
  virtual std::string WhyNot() const = 0;
  /// Whether the device did not open since another program has it.
  virtual bool IsInUse() const = 0;
  virtual LineLosses Losses() const = 0;
  /// Whether the last signal went out; what stood in its way has been told.
  virtual bool Sent() const = 0;
  /// The modem lines of an open serial port as TIOCM_ bits, as they are now; none for any other device.
  virtual std::optional<int> ModemLines() = 0;
};

}  // namespace keplo
