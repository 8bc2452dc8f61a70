#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace keplo {

// RC6: a start digit and three of the mode, a toggle of double length, and what the mode says: 16 digits in
// mode 0, 32 in mode 6. A one is a mark and a space, a zero a space and a mark, the opposite of RC5.

/// What stands in front of a frame: a mark of six base times and a space of two.
inline constexpr std::string_view kRc6Leader = "11111100";

/// One frame.
struct Rc6Frame {
  static constexpr std::size_t kMostDigits = 36;

  std::array<char, kMostDigits> Digits{};
  std::size_t Size = 0;
  char Toggle = '0';

  /// 20 or 36 digits, without the toggle.
  std::string_view Code() const { return {Digits.data(), Size}; }
};

/// Reads the half bits of a frame after its leader, 1 and 0 for a base time each.
/// @param halves without the space at the end, if the last digit closes with one
/// @return nothing for other frames than those of modes 0 and 6
std::optional<Rc6Frame> ReadRc6(std::string_view halves);

/// Whether these digits are those of an RC6 frame, which its sender can put on air.
bool IsRc6Code(std::string_view code);

/// The half bits of a frame after its leader.
/// @param code for which IsRc6Code holds
/// @param one, zero half bits of the digits
std::string Rc6Halves(std::string_view code, bool toggle, std::string_view one, std::string_view zero);

}  // namespace keplo
