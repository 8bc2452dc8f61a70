#pragma once

#include <chrono>

namespace keplo {

/// Beside Win32Ser: tells the owner of a line how long it may leave the line alone. A tick on a line at rest
/// sees nothing, so whoever drives the monitoring timer may leave such ticks out.
class LineRest {
 public:
  virtual ~LineRest() = default;

  /// A descriptor that becomes readable when the line leaves rest or its device goes away; -1 if the line has
  /// none.
  virtual int WakeDescriptor() = 0;
  /// How long no tick is needed unless the descriptor becomes readable; zero while every tick counts.
  virtual std::chrono::milliseconds MayRest() = 0;
  /// Drops what came in while nobody listened, so that it raises no events when ticks begin again.
  virtual void Forget() = 0;
  /// Notices that the device went, and opens it when it is there again; for times in which nobody ticks.
  virtual void LookAfterDevice() = 0;
};

}  // namespace keplo
