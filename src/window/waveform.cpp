#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "config/cfg_text.h"
#include "signal/sample_bits.h"
#include "window/form1.h"

namespace keplo {

namespace {

// Pixels of the design.
constexpr int kLowerLevel = 44;   // above the bottom of the window's inside: a sample of 0
constexpr int kLevelHeight = 40;  // from there up to a sample of 1
constexpr int kMargin = 20;       // at either side, where nothing is drawn

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
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const char sample = samples[i];
    const double x = (static_cast<double>(i) + kSamplesPerByte + offset) * waveZoom_;
    if (x > kMargin && x < right) {
      Surface.PlotPoint(x, sample == '1' ? upper : lower, ui::kGreen);
      if (sample != previous) Surface.DrawLine(x, lower, x, upper, ui::kGreen);
    }
    previous = sample;
  }
  Surface.Show();
  return samples;
}

void Form1::Redraw() { mod_.Signal.SampleBits = DrawWave(mod_.Signal.RawCapture, waveOffset_); }

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
