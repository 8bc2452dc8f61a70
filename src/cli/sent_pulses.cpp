#include "cli/sent_pulses.h"

#include <algorithm>
#include <cstdint>

#include "signal/sample_bits.h"
#include "signal/timing.h"

namespace keplo::cli {

PulseTrain PulsesOf(const LineOutput::Signal& signal) {
  PulseTrain train;
  if (signal.Pulse <= 0) return train;
  const std::string slots = SamplesToBits(signal.Bytes);
  std::size_t offset = std::min(slots.find('1'), slots.size());
  while (offset < slots.size()) {
    const std::size_t run = RunLength(slots, offset, slots[offset]);
    const std::int64_t length = static_cast<std::int64_t>(run) * signal.Pulse;
    train.push_back(static_cast<int>(std::min<std::int64_t>(length, kLongestPulse)));
    offset += run;
  }
  if (train.size() % 2 == 1) train.push_back(0);
  if (!train.empty()) train.back() = std::min(train.back() + kPressSilence, kLongestPulse);
  return train;
}

}  // namespace keplo::cli
