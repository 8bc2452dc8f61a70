#pragma once

#include <cmath>

namespace keplo::qt {

inline constexpr double kTwipsPerInch = 1440.0;

/// Converts design sizes, which are in twips, to pixels; the scale depends on screen and font.
class TwipScale {
 public:
  explicit TwipScale(double pixelsPerTwip) : pixelsPerTwip_(pixelsPerTwip) {}

  int ToPixels(int twips) const { return static_cast<int>(std::lround(twips * pixelsPerTwip_)); }
  int ToTwips(int pixels) const { return static_cast<int>(std::lround(pixels / pixelsPerTwip_)); }
  double PixelsPerTwip() const { return pixelsPerTwip_; }

 private:
  double pixelsPerTwip_;
};

}  // namespace keplo::qt
