#include "window/wave_reading.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "signal/sample_bits.h"

namespace keplo {

namespace {

constexpr double kMicrosecondsPerMs = 1000.0;
constexpr int kTicksPerLabel = 5;

/// "560 us, 1.0 T"; in milliseconds from 10 ms on.
std::string LengthText(int samples, int pulse) {
  const int us = samples * kNominalSampleTime;
  std::array<char, 64> text{};
  if (us < 10 * kMicrosecondsPerMs) {
    std::snprintf(text.data(), text.size(), "%d us", us);
  } else {
    std::snprintf(text.data(), text.size(), "%.2f ms", us / kMicrosecondsPerMs);
  }
  std::string length = text.data();
  if (pulse <= 0) return length;
  std::snprintf(text.data(), text.size(), ", %.1f T", static_cast<double>(us) / pulse);
  return length + text.data();
}

}  // namespace

void WaveReading::Read(std::string_view samples) {
  if (samples == samples_) return;
  samples_ = samples;
  runs_.clear();
  pointer_.reset();
  cursors_.clear();
  cursorsBefore_.clear();
  for (std::size_t start = 0; start < samples.size();) {
    const std::size_t end = std::min(samples.find_first_not_of(samples[start], start), samples.size());
    runs_.push_back({samples[start] == '1', static_cast<int>(start), static_cast<int>(end - start)});
    start = end;
  }
}

void WaveReading::PointAt(std::optional<int> sample) {
  const bool onTrace = sample && *sample >= 0 && *sample < Samples();
  pointer_ = onTrace ? sample : std::nullopt;
}

const WaveRun* WaveReading::RunAt(int sample) const {
  if (sample < 0 || sample >= Samples()) return nullptr;
  return &*std::prev(std::upper_bound(runs_.begin(), runs_.end(), sample,
                                      [](int wanted, const WaveRun& run) { return wanted < run.Start; }));
}

void WaveReading::StepPointer(int step) {
  const WaveRun* run = RunAtPointer();
  if (run == nullptr) {
    PointAt(0);
  } else if (step > 0 && run->End() < Samples()) {
    PointAt(run->End());
  } else if (step < 0) {
    // From inside a run, its own beginning comes first.
    PointAt(*pointer_ > run->Start || run == runs_.data() ? run->Start : std::prev(run)->Start);
  }
}

std::string WaveReading::PointerText(int pulse) const {
  const WaveRun* run = RunAtPointer();
  if (run == nullptr) return {};
  return (run->Mark ? "mark " : "space ") + LengthText(run->Length, pulse);
}

void WaveReading::PlaceCursor() {
  if (!pointer_) return;
  cursorsBefore_ = cursors_;
  if (cursors_.size() == 2) cursors_.clear();
  cursors_.push_back(*pointer_);
}

std::string WaveReading::CursorText(int pulse) const {
  if (cursors_.empty()) return {};
  if (cursors_.size() == 1) return "cursor at " + TimeText(cursors_[0] * kMsPerSample) + " ms";
  return "distance " + LengthText(std::abs(cursors_[1] - cursors_[0]), pulse);
}

std::vector<TimeTick> TimeTicks(double fromMs, double toMs, double shortestMs) {
  std::vector<TimeTick> ticks;
  if (!(shortestMs > 0) || !(toMs > fromMs)) return ticks;
  const double decade = std::pow(10.0, std::floor(std::log10(shortestMs)));
  double step = 10 * decade;
  for (const double part : {5.0, 2.0, 1.0}) {
    if (part * decade >= shortestMs) step = part * decade;
  }
  const double small = step / kTicksPerLabel;
  for (auto number = static_cast<std::int64_t>(std::ceil(fromMs / small));
       static_cast<double>(number) * small <= toMs; ++number)
    ticks.push_back({static_cast<double>(number) * small, number % kTicksPerLabel == 0});
  return ticks;
}

std::string TimeText(double ms) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.6g", ms);
  return text.data();
}

}  // namespace keplo
