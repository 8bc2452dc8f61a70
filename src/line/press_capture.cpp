#include "line/press_capture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "line/shaping/clean_press.h"
#include "line/shaping/hold_press.h"

namespace keplo {

namespace {

/// Sets the samples from begin on, up to the one before end.
void SetMark(std::string& capture, std::size_t begin, std::size_t end) {
  const auto set = [&](std::size_t byte, unsigned bits) {
    capture[byte] = static_cast<char>(static_cast<unsigned char>(capture[byte]) | bits);
  };
  if (begin >= end) return;
  const std::size_t first = begin / kBitsPerByte;
  const std::size_t last = (end - 1) / kBitsPerByte;
  const unsigned fromBegin = 0xFFU >> begin % kBitsPerByte;
  const unsigned toEnd = 0xFFU << (kBitsPerByte - 1 - (end - 1) % kBitsPerByte) & 0xFFU;
  if (first == last) return set(first, fromBegin & toEnd);
  set(first, fromBegin);
  std::fill(capture.begin() + static_cast<std::ptrdiff_t>(first) + 1,
            capture.begin() + static_cast<std::ptrdiff_t>(last), '\xFF');
  set(last, toEnd);
}

}  // namespace

void PulsesToCapture(Pulses press, double sampleTime, std::size_t bufferBytes, std::string& capture) {
  capture.assign(bufferBytes, '\0');
  const std::size_t samples = bufferBytes * kBitsPerByte;
  // A sample stands in the middle of its time, so that an edge on the border of two samples is on no sample.
  const auto sampleAt = [&](std::int64_t time) {
    return static_cast<std::size_t>(std::clamp(std::ceil(static_cast<double>(time) / sampleTime - 0.5), 0.0,
                                               static_cast<double>(samples)));
  };
  std::int64_t time = 0;
  std::size_t begin = sampleAt(time);
  for (std::size_t i = 0; i < press.size() && begin < samples; ++i) {
    time += press[i];
    const std::size_t end = sampleAt(time);
    if (i % 2 == 0) SetMark(capture, begin, end);
    begin = end;
  }
}

std::string PulsesToCapture(Pulses press, double sampleTime, std::size_t bufferBytes) {
  std::string capture;
  PulsesToCapture(press, sampleTime, bufferBytes, capture);
  return capture;
}

void PressSampler::Sample(const Press& press, std::size_t bufferBytes, const LineOptions& options,
                          std::string& signal) {
  if (const auto* raw = std::get_if<RawBytes>(&press)) {
    signal.assign(raw->Bytes, 0, bufferBytes);
    return;
  }
  Clean(std::get<PulseTrain>(press), options);
  if (options.Shape && !options.KeepsFrames()) {
    ShapePress(held_, bufferBytes, options, space_, shaped_);
    held_.swap(shaped_);
  }
  PulsesToCapture(held_, options.SampleTime, bufferBytes, signal);
}

PulseTrain PressSampler::OnAir(Pulses press, const LineOptions& options) {
  Clean(press, options);
  return held_;
}

void PressSampler::Clean(Pulses press, const LineOptions& options) {
  clean_.assign(press.begin(), press.end());
  if (options.Shape && options.KeepsFrames()) RemoveGlitches(press, clean_);
  if (options.Shape && !options.KeepsFrames()) CleanPress(press, space_, clean_);
  held_ = clean_;
  if (!options.KeepsFrames()) HoldPress(clean_, options.HoldMs, space_, held_);
}

PulseTrain PressOnAir(Pulses press, const LineOptions& options) {
  return PressSampler().OnAir(press, options);
}

std::string SignalOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options) {
  std::string signal;
  PressSampler().Sample(press, bufferBytes, options, signal);
  return signal;
}

std::string CaptureOfPress(const Press& press, std::size_t bufferBytes, const LineOptions& options) {
  std::string capture = SignalOfPress(press, bufferBytes, options);
  capture.resize(bufferBytes, '\0');
  return capture;
}

}  // namespace keplo
