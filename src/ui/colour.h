#pragma once

#include <cstdint>

namespace keplo::ui {

struct Colour {
  std::uint8_t Red, Green, Blue;
  bool operator==(const Colour&) const = default;
};

inline constexpr Colour kGreen{0, 255, 0};
inline constexpr Colour kRed{255, 0, 0};
inline constexpr Colour kCyan{0, 255, 255};
inline constexpr Colour kBlue{0, 0, 255};
inline constexpr Colour kYellow{255, 255, 0};
inline constexpr Colour kBlack{0, 0, 0};

}  // namespace keplo::ui
