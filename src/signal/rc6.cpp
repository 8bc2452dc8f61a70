#include "signal/rc6.h"

namespace keplo {

namespace {

constexpr std::size_t kHeadDigits = 4;  // start and mode; the toggle follows
constexpr std::size_t kMode0Digits = 20, kMode6Digits = Rc6Frame::kMostDigits;
constexpr std::size_t kToggleHalves = 4;

/// Remotes of media centres have their toggle among the digits of mode 6; the one of double length stays as
/// it is.
constexpr std::string_view kMediaCentre = "111010000000";
constexpr std::size_t kMediaCentreToggle = 20;

bool HasOwnToggle(std::string_view code) {
  return code.size() == kMode6Digits && code.substr(0, kMediaCentre.size()) == kMediaCentre;
}

/// The digit of two half bits; nothing for equal ones.
std::optional<char> DigitOf(char first, char second) {
  if (first == second) return std::nullopt;
  return first;
}

}  // namespace

bool IsRc6Code(std::string_view code) {
  const std::string_view head = code.substr(0, kHeadDigits);
  return code.find_first_not_of("01") == std::string_view::npos &&
         ((code.size() == kMode0Digits && head == "1000") || (code.size() == kMode6Digits && head == "1110"));
}

std::optional<Rc6Frame> ReadRc6(std::string_view halves) {
  const auto half = [&](std::size_t place) { return place < halves.size() ? halves[place] : '0'; };
  Rc6Frame frame;
  for (std::size_t place = 0; place < halves.size(); place += 2) {
    if (frame.Size == kHeadDigits && place == 2 * kHeadDigits) {
      const std::optional<char> toggle = DigitOf(half(place), half(place + 2));
      if (!toggle || half(place) != half(place + 1) || half(place + 2) != half(place + 3))
        return std::nullopt;
      frame.Toggle = *toggle;
      place += kToggleHalves;
    }
    const std::optional<char> digit = DigitOf(half(place), half(place + 1));
    if (!digit || frame.Size == Rc6Frame::kMostDigits) return std::nullopt;
    frame.Digits.at(frame.Size++) = *digit;
  }
  if (!IsRc6Code(frame.Code())) return std::nullopt;
  if (HasOwnToggle(frame.Code())) {
    frame.Toggle = frame.Digits[kMediaCentreToggle];
    frame.Digits[kMediaCentreToggle] = '0';
  }
  return frame;
}

std::string Rc6Halves(std::string_view code, bool toggle, std::string_view one, std::string_view zero) {
  std::string digits(code);
  const bool ownToggle = HasOwnToggle(code);
  if (ownToggle) digits[kMediaCentreToggle] = toggle ? '1' : '0';
  std::string halves;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i == kHeadDigits) {
      for (const char half : toggle && !ownToggle ? one : zero) halves.append(2, half);
    }
    halves += digits[i] == '1' ? one : zero;
  }
  return halves;
}

}  // namespace keplo
