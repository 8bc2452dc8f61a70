#include "window/waveform_pane.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "config/cfg_text.h"
#include "signal/sample_bits.h"

namespace keplo {

namespace {

// Design pixels.
constexpr int kLowerLevel = 44;   // height of a 0 above the bottom of the window
constexpr int kLevelHeight = 40;  // height of a 1 above a 0
constexpr int kMargin = 20;       // on either side, where nothing is drawn

constexpr double kMostZoom = 64;         // pixels per sample
constexpr double kMostOffset = 32767;    // samples
constexpr double kDevicePixelParts = 4;  // per design pixel, at most

constexpr int kSamplesPerByte = 8;
constexpr int kDefaultOffset = 15;          // samples; puts the first sample just inside the margin
constexpr std::size_t kShortestTrace = 60;  // bytes; the buttons do not zoom shorter ones

}  // namespace

double WaveformPane::LevelOf(bool isMark) const {
  return surface_.Height - kLowerLevel - (isMark ? kLevelHeight : 0);
}

void WaveformPane::DrawWave(std::string_view capture, int offset) {
  const double lower = LevelOf(false), upper = LevelOf(true);
  const double right = surface_.Width - kMargin;
  const std::string samples = SamplesToBits(capture);
  surface_.Clear();
  char previous = '0';
  const auto pixelOf = [](double x) { return std::floor(x * kDevicePixelParts); };
  std::array<double, 2> lastPoint{-1, -1};  // on each level
  double lastLine = -1;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const char sample = samples[i];
    const double x = (static_cast<double>(i) + kSamplesPerByte + offset) * zoom_;
    if (x > kMargin && x < right) {
      // At low zoom many samples fall on one pixel, which only needs to be drawn once.
      const double pixel = pixelOf(x);
      const bool isMark = sample == '1';
      if (std::exchange(lastPoint[isMark ? 1 : 0], pixel) != pixel)
        surface_.PlotPoint(x, isMark ? upper : lower, ui::kGreen);
      if (sample != previous && std::exchange(lastLine, pixel) != pixel)
        surface_.DrawLine(x, lower, x, upper, ui::kGreen);
    }
    previous = sample;
  }
  reading_.Read(samples);
  surface_.Show();
}

void WaveformPane::Redraw() { DrawWave(signal_.RawCapture, offset_); }

double WaveformPane::PlaceOf(double sample) const { return (sample + kSamplesPerByte + offset_) * zoom_; }

double WaveformPane::SampleAt(double place) const { return place / zoom_ - kSamplesPerByte - offset_; }

std::optional<ui::DrawingSurface::Point> WaveformPane::Entry() const {
  const double sample = std::clamp(std::floor(SampleAt(kMargin)), -1.0, 1.0 * reading_.Samples());
  const WaveRun* run = reading_.RunAt(static_cast<int>(sample));
  if (run == nullptr) return std::nullopt;
  return ui::DrawingSurface::Point{kMargin, LevelOf(run->Mark), ui::kGreen};
}

double WaveformPane::End() const {
  return std::min(PlaceOf(reading_.Samples()), 1.0 * surface_.Width - kMargin);
}

void WaveformPane::ZoomAt(double place, double factor) {
  if (reading_.Samples() == 0) return;
  const double fitting = static_cast<double>(surface_.Width - 2 * kMargin) / reading_.Samples();
  const double zoom = std::clamp(zoom_ * factor, std::min(fitting, zoom_), std::max(kMostZoom, zoom_));
  // May move the trace further to the right than the scroll bar can.
  ShowAt(SampleAt(place), place, zoom, scrollBar_.Max());
}

void WaveformPane::Fit() {
  if (reading_.Samples() == 0) return;
  const double fitting = (surface_.Width - 2.0 * kMargin - 2) / reading_.Samples();
  ShowAt(0, kMargin + 1, std::min(fitting, kMostZoom), LastOffset());
}

void WaveformPane::ShowAt(double sample, double place, double zoom, int last) {
  zoom_ = zoom;
  const auto offset = static_cast<int>(
      std::clamp(std::ceil(place / zoom - kSamplesPerByte - sample), -kMostOffset, kMostOffset));
  ShowFrom(offset, std::min(last, offset));
}

/// At low zoom the trace may begin further to the right than the left end of the scroll bar permits.
void WaveformPane::ShowFrom(int offset, int last) {
  const int before = scrollBar_.Value();
  scrollBar_.Set(kDefaultOffset, last, offset);
  const bool isDrawn = scrollBar_.Value() != before && scrollBar_.Value() == offset;
  offset_ = offset;
  if (!isDrawn) Redraw();
}

void WaveformPane::Slide(int samples) {
  if (reading_.Samples() == 0) return;
  ShowFrom(std::clamp(offset_ + samples, scrollBar_.Max(), std::max(offset_, kDefaultOffset)),
           scrollBar_.Max());
}

int WaveformPane::LastOffset() const {
  // At the right end of the scroll bar, the last sample is where the first one is at the left end.
  return kDefaultOffset + 1 - kSamplesPerByte * static_cast<int>(signal_.RawCapture.size());
}

void WaveformPane::StartTrace() {
  zoom_ = 1;
  offset_ = kDefaultOffset;
  scrollBar_.Set(kDefaultOffset, LastOffset(), offset_);
  Redraw();
}

void WaveformPane::Scroll() {
  offset_ = scrollBar_.Value();
  Redraw();
}

bool WaveformPane::CanZoom() const {
  return !Trimmed(pulse_.Text()).empty() && signal_.RawCapture.size() >= kShortestTrace;
}

void WaveformPane::ZoomTo(double zoom) {
  // An overflow or underflow could not be undone by zooming back.
  if (!CanZoom() || !std::isnormal(zoom)) return;
  zoom_ = zoom;
  Redraw();
}

void WaveformPane::Reset() {
  if (CanZoom()) StartTrace();
}

}  // namespace keplo
