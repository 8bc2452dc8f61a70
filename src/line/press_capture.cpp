#include "line/press_capture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "line/shaping/clean_press.h"
#include "line/shaping/hold_press.h"

namespace keplo {

std::string PulsesToCapture(const PulseTrain& train, double sampleTime, std::size_t bufferBytes) {
  std::string capture(bufferBytes, '\0');
  const std::size_t samples = bufferBytes * 8;
  // A sample stands in the middle of its time, so that an edge on the border of two samples is on no sample.
  const auto sampleAt = [&](std::int64_t time) {
    return static_cast<std::size_t>(std::clamp(std::ceil(static_cast<double>(time) / sampleTime - 0.5), 0.0,
                                               static_cast<double>(samples)));
  };
  std::int64_t time = 0;
  for (std::size_t i = 0; i < train.size(); ++i) {
    const std::size_t begin = sampleAt(time);
    time += train[i];
    const std::size_t end = i % 2 == 0 ? sampleAt(time) : begin;
    for (std::size_t sample = begin; sample < end; ++sample) {
      const unsigned byte = static_cast<unsigned char>(capture[sample / 8]) | (0x80U >> sample % 8);
      capture[sample / 8] = static_cast<char>(byte);
    }
    if (begin >= samples) break;
  }
  return capture;
}

std::string SignalOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options) {
  if (const auto* raw = std::get_if<RawBytes>(&press)) return raw->Bytes.substr(0, bufferBytes);
  PulseTrain train = std::get<PulseTrain>(press);
  if (options.Shape) train = CleanPress(train);
  train = HoldPress(train, options.HoldMs);
  if (options.Shape) train = ShapePress(train, bufferBytes, options);
  return PulsesToCapture(train, options.SampleTime, bufferBytes);
}

std::string CaptureOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options) {
  std::string capture = SignalOfPress(press, bufferBytes, options);
  capture.resize(bufferBytes, '\0');
  return capture;
}

}  // namespace keplo
