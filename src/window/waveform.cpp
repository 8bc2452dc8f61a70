#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "config/cfg_text.h"
#include "signal/sample_bits.h"
#include "window/form1.h"

namespace keplo {

namespace {

// Pixels of the design.
constexpr int kLowerLevel = 44;   // above the bottom of the window's inside: a sample of 0
constexpr int kLevelHeight = 40;  // from there up to a sample of 1
constexpr int kMargin = 20;       // at either side, where nothing is drawn

constexpr double kMostZoom = 64;       // pixels a sample
constexpr double kMostOffset = 32767;  // samples
constexpr double kPartsOfAPixel = 4;   // that a screen shows apart

constexpr int kSamplesPerByte = 8;
constexpr int kDefaultOffset = 15;          // samples; the first sample then stands just inside the margin
constexpr std::size_t kShortestTrace = 60;  // bytes; with less there is nothing worth zooming

}  // namespace

std::string Form1::DrawWave(std::string_view capture, int offset) {
  const double lower = Surface.Height - kLowerLevel;
  const double upper = lower - kLevelHeight;
  const double right = Surface.Width - kMargin;
  std::string samples = SamplesToBits(capture);
  Surface.Clear();
  char previous = '0';
  const auto pixelOf = [](double x) { return std::floor(x * kPartsOfAPixel); };
  std::array<double, 2> lastPoint{-1, -1};  // of each level
  double lastLine = -1;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const char sample = samples[i];
    const double x = (static_cast<double>(i) + kSamplesPerByte + offset) * waveZoom_;
    if (x > kMargin && x < right) {
      // A trace that is squeezed has many samples on one pixel, which need be drawn once only.
      const double pixel = pixelOf(x);
      const bool isMark = sample == '1';
      if (std::exchange(lastPoint[isMark ? 1 : 0], pixel) != pixel)
        Surface.PlotPoint(x, isMark ? upper : lower, ui::kGreen);
      if (sample != previous && std::exchange(lastLine, pixel) != pixel)
        Surface.DrawLine(x, lower, x, upper, ui::kGreen);
    }
    previous = sample;
  }
  Wave.Read(samples);
  Surface.Show();
  return samples;
}

void Form1::Redraw() { mod_.Signal.SampleBits = DrawWave(mod_.Signal.RawCapture, waveOffset_); }

double Form1::WavePlace(double sample) const { return (sample + kSamplesPerByte + waveOffset_) * waveZoom_; }

double Form1::WaveSample(double place) const { return place / waveZoom_ - kSamplesPerByte - waveOffset_; }

void Form1::ZoomWave(double place, double factor) {
  if (Wave.Samples() == 0) return;
  const double fitting = static_cast<double>(Surface.Width - 2 * kMargin) / Wave.Samples();
  const double zoom =
      std::clamp(waveZoom_ * factor, std::min(fitting, waveZoom_), std::max(kMostZoom, waveZoom_));
  ShowWaveAt(WaveSample(place), place, zoom);
}

void Form1::FitWave() {
  if (Wave.Samples() == 0) return;
  const double fitting = (Surface.Width - 2.0 * kMargin - 2) / Wave.Samples();
  ShowWaveAt(0, kMargin + 1, std::min(fitting, kMostZoom));
}

void Form1::ShowWaveAt(double sample, double place, double zoom) {
  waveZoom_ = zoom;
  waveOffset_ = static_cast<int>(
      std::clamp(std::ceil(place / zoom - kSamplesPerByte - sample), -kMostOffset, kMostOffset));
  // A trace that is squeezed may begin further to the right than the bar reaches by itself.
  const int first = std::max(kDefaultOffset, waveOffset_);
  const int before = HScroll1.Value();
  HScroll1.Set(first, std::min(HScroll1.Max(), waveOffset_), waveOffset_);
  if (HScroll1.Value() == before) Redraw();
}

void Form1::StartTrace() {
  waveZoom_ = 1;
  waveOffset_ = kDefaultOffset;
  const int samples = kSamplesPerByte * static_cast<int>(mod_.Signal.RawCapture.size());
  // At the right end of the bar the last sample stands where the first one does at the left end.
  HScroll1.Set(kDefaultOffset, kDefaultOffset + 1 - samples, waveOffset_);
  Redraw();
}

void Form1::HScroll1_Change() {
  waveOffset_ = HScroll1.Value();
  Redraw();
}

bool Form1::CanZoom() const {
  return !Trimmed(SendPulse.Text()).empty() && mod_.Signal.RawCapture.size() >= kShortestTrace;
}

void Form1::ZoomTo(double zoom) {
  // Beyond the numbers there would be no way back.
  if (!CanZoom() || !std::isnormal(zoom)) return;
  waveZoom_ = zoom;
  Redraw();
}

void Form1::GExt_Click() { ZoomTo(waveZoom_ * 2); }

void Form1::Gshr_Click() { ZoomTo(waveZoom_ / 2); }

void Form1::GReset_Click() {
  if (!CanZoom()) return;
  waveZoom_ = 1;
  waveOffset_ = kDefaultOffset;
  HScroll1.SetValue(kDefaultOffset);
  Redraw();
}

void Form1::MinButton_Click() {
  windowLarge_ = !windowLarge_;
  SetTitle((windowLarge_ ? "Orlo's Keplo v" : "Keplo Send v") + VersionText);
  if (OnResize) OnResize();
}

}  // namespace keplo
