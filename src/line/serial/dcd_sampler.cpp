#include "line/serial/dcd_sampler.h"

#include <algorithm>

namespace keplo {

namespace {

void Mark(std::span<char> buffer, std::size_t begin, std::size_t end) {
  for (std::size_t sample = begin; sample < end; ++sample) {
    const unsigned byte = static_cast<unsigned char>(buffer[sample / 8]) | (0x80U >> sample % 8);
    buffer[sample / 8] = static_cast<char>(byte);
  }
}

}  // namespace

SamplingReport SampleSignal(DeviceCalls& calls, const KnownBeginning& known,
                            const std::function<std::optional<bool>()>& present, std::span<char> buffer,
                            std::chrono::nanoseconds sampleTime, std::chrono::nanoseconds endSilence) {
  SamplingReport report;
  const auto start = known.From;
  const std::size_t most = buffer.size() * 8;
  const auto endSamples = static_cast<std::size_t>(endSilence / sampleTime);
  std::size_t done = 0;
  std::size_t silentFrom = 0;
  auto end = std::chrono::nanoseconds::zero();  // of a known length
  for (std::size_t i = 0; i < known.Lengths.size(); ++i) {
    end += std::chrono::microseconds(known.Lengths[i]);
    const std::size_t upTo = std::min<std::size_t>(static_cast<std::size_t>(end / sampleTime), most);
    if (i % 2 == 0) Mark(buffer, done, silentFrom = upTo);
    done = upTo;
  }
  while (done < most && done - silentFrom < endSamples) {
    const auto due = start + static_cast<std::int64_t>(done) * sampleTime;
    calls.SleepUntil(due);
    const std::optional<bool> level = present();
    if (!level) break;
    const auto now = calls.Now();
    if (now - due > sampleTime / 2) ++report.Late;
    const auto reached = static_cast<std::size_t>(std::max<std::int64_t>((now - start) / sampleTime, 0)) + 1;
    const std::size_t upTo = std::min(std::max(done + 1, reached), most);
    report.Filled += upTo - done - 1;
    if (*level) {
      Mark(buffer, done, upTo);
      silentFrom = upTo;
    }
    done = upTo;
  }
  report.Samples = done;
  return report;
}

}  // namespace keplo
