#pragma once

#include <cmath>

namespace keplo::qt {

/// Design sizes are twips, 1440 to the inch; how many pixels one takes depends on screen and font.
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
