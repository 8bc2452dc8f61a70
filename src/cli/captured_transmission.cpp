#include "cli/captured_transmission.h"

#include <algorithm>
#include <cstdint>

#include "signal/runs.h"
#include "signal/sample_words.h"

namespace keplo::cli {

PulseTrain PulsesOf(const LineOutput::Signal& signal) {
  PulseTrain train;
  if (signal.Pulse <= 0) return train;
  SampleWords slots;
  slots.Read(signal.Bytes);
  RunReader reader;
  RunSpan runs = reader.Read(slots);
  // A pulse train begins with a mark.
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  for (const int run : runs) {
    const std::int64_t length = std::int64_t{run} * signal.Pulse;
    train.push_back(static_cast<int>(std::min<std::int64_t>(length, kLongestPulse)));
  }
  if (train.size() % 2 == 1) train.push_back(0);
  if (!train.empty()) train.back() = std::min(train.back() + kPressSilence, kLongestPulse);
  return train;
}

}  // namespace keplo::cli
