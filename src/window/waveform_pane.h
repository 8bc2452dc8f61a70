#pragma once

#include <optional>
#include <string_view>

#include "signal/signal_state.h"
#include "ui/drawing_surface.h"
#include "ui/scroll_bar.h"
#include "ui/text_box.h"
#include "window/wave_reading.h"

namespace keplo {

/// Draws the trace of the capture in the signal state. Places are in design pixels from the left edge of the
/// surface.
class WaveformPane {
 public:
  /// @param reading receives the samples that are drawn
  /// @param pulse of the shown signal; if it is empty, the buttons do nothing
  WaveformPane(SignalState& signal, WaveReading& reading, ui::DrawingSurface& surface,
               ui::ScrollBar& scrollBar, const ui::TextBox& pulse)
      : signal_(signal), reading_(reading), surface_(surface), scrollBar_(scrollBar), pulse_(pulse) {}

  /// Shows a new capture from the beginning.
  void StartTrace();
  void Scroll();
  void Stretch() { ZoomTo(zoom_ * 2); }
  void Squeeze() { ZoomTo(zoom_ / 2); }
  void Reset();

  double PlaceOf(double sample) const;
  double SampleAt(double place) const;
  /// Where a trace that begins left of the margin enters, at the level of the sample there; none for other
  /// traces. At high zoom that sample may be the only visible one.
  std::optional<ui::DrawingSurface::Point> Entry() const;
  /// Where the last sample ends, or where the trace reaches the right margin.
  double End() const;
  /// Stretches the trace by a factor around a fixed place.
  void ZoomAt(double place, double factor);
  /// Shows the whole trace.
  void Fit();
  /// Moves the trace to the right, in samples.
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
  double zoom_ = 1;  // pixels per sample
  int offset_ = 15;  // of the first sample, samples
};

}  // namespace keplo
