#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>
#include <vector>

#include "line/device_calls.h"
#include "line/held_signals.h"
#include "line/real_time.h"

namespace keplo {

/// One stretch of light, in slots from the beginning of a signal.
struct LitSlots {
  std::size_t Begin = 0;
  std::size_t End = 0;
};

/// The stretches of light of packed slots, most significant bit first.
std::vector<LitSlots> LitSlotsOf(std::string_view bytes);

/// Waits until a time in steps, between which a request to end comes through.
/// @return false if the program is asked to end before that time
bool SleepUnlessEnded(DeviceCalls& calls, std::chrono::nanoseconds time);

/// The clock of one signal that is sent: slots begin at absolute times, so that nothing drifts. As long as it
/// lives the thread is punctual, and signals that end or stop the program wait.
class SlotClock {
 public:
  /// @param lead time to get ready before the first slot
  SlotClock(DeviceCalls& calls, std::chrono::microseconds slot, std::chrono::nanoseconds lead)
      : calls_(calls), slot_(slot), start_(calls.Now() + lead) {}

  /// When a slot begins.
  std::chrono::nanoseconds At(std::size_t slot) const {
    return start_ + static_cast<std::int64_t>(slot) * slot_;
  }
  /// @return false if the program is asked to end before that slot
  bool WaitFor(std::size_t slot) const { return SleepUnlessEnded(calls_, At(slot)); }

 private:
  const HeldSignals signals_{HeldSignals::Kinds::EndingAndStopping};
  const Hurry hurry_;
  DeviceCalls& calls_;
  std::chrono::microseconds slot_;
  std::chrono::nanoseconds start_;
};

}  // namespace keplo
