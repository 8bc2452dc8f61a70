#pragma once

#include <optional>
#include <string_view>

#include "signal/signal_state.h"
#include "ui/drawing_surface.h"
#include "ui/scroll_bar.h"
#include "ui/text_box.h"
#include "window/wave_reading.h"

namespace keplo {

/// The trace of the capture in the signal state.
class WaveformPane {
 public:
  /// @param reading takes the samples that are drawn
  /// @param pulse of the signal that is shown; without one the buttons have nothing to zoom
  WaveformPane(SignalState& signal, WaveReading& reading, ui::DrawingSurface& surface,
               ui::ScrollBar& scrollBar, const ui::TextBox& pulse)
      : signal_(signal), reading_(reading), surface_(surface), scrollBar_(scrollBar), pulse_(pulse) {}

  /// Shows a new capture from its beginning.
  void StartTrace();
  void Scroll();
  void Stretch() { ZoomTo(zoom_ * 2); }
  void Squeeze() { ZoomTo(zoom_ / 2); }
  void Reset();

  /// Pixels of the design from the left edge of the surface to a sample.
  double PlaceOf(double sample) const;
  double SampleAt(double place) const;
  /// Where a trace that begins left of the margin comes out of it, on the level of the sample that
  /// stands there; none for another trace. At great zoom that sample may be the only one to be seen.
  std::optional<ui::DrawingSurface::Point> Entry() const;
  /// Where the last sample ends, or goes into the right margin.
  double End() const;
  /// Stretches the trace by a factor; what stands at a place stays there.
  void ZoomAt(double place, double factor);
  /// Shows the whole trace.
  void Fit();
  /// Slides the trace to the right, in samples.
  void Slide(int samples);

 private:
  double LevelOf(bool isMark) const;
  void DrawWave(std::string_view capture, int offset);
  void Redraw();
  bool CanZoom() const;
  void ZoomTo(double zoom);
  void ShowAt(double sample, double place, double zoom, int last);
  void ShowFrom(int offset, int last);
  int LastOffset() const;

  SignalState& signal_;
  WaveReading& reading_;
  ui::DrawingSurface& surface_;
  ui::ScrollBar& scrollBar_;
  const ui::TextBox& pulse_;
  double zoom_ = 1;  // pixels a sample
  int offset_ = 15;  // samples; the place of the first sample
};

}  // namespace keplo
