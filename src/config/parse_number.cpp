#include "config/parse_number.h"

namespace keplo {

namespace {

// Above the range of every setting, and low enough that appending another digit fits 64 bits.
constexpr std::int64_t kCeiling = 1'000'000'000'000;

struct Parts {
  bool Negative = false;
  std::int64_t Whole = 0;
  std::string_view Fraction;  // digits after the point

  std::int64_t Signed(std::int64_t whole) const { return Negative ? -whole : whole; }
};

std::string_view TakeDigits(std::string_view& text) {
  const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
  text.remove_prefix(digits.size());
  return digits;
}

Parts Read(std::string_view text) {
  Parts parts;
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    parts.Negative = text[0] == '-';
    text.remove_prefix(1);
  }
  const std::string_view digits = TakeDigits(text);
  for (const char digit : digits) parts.Whole = std::min(parts.Whole * 10 + (digit - '0'), kCeiling);
  if (!digits.empty() && !text.empty() && text[0] == '.') {
    text.remove_prefix(1);
    parts.Fraction = TakeDigits(text);
  }
  return parts;
}

bool RoundsUp(const Parts& parts) {
  if (parts.Fraction.empty() || parts.Fraction[0] < '5') return false;
  const bool half =
      parts.Fraction[0] == '5' && parts.Fraction.find_first_not_of('0', 1) == std::string_view::npos;
  return !half || parts.Whole % 2 == 1;
}

}  // namespace

std::int64_t NumberWithoutFraction(std::string_view value) {
  const Parts parts = Read(value);
  return parts.Signed(parts.Whole);
}

std::int64_t NumberRounded(std::string_view value) {
  const Parts parts = Read(value);
  return parts.Signed(RoundsUp(parts) ? parts.Whole + 1 : parts.Whole);
}

double Number(std::string_view value) {
  const Parts parts = Read(value);
  auto number = static_cast<double>(parts.Whole);
  double weight = 1;
  for (const char digit : parts.Fraction) number += (digit - '0') * (weight /= 10);
  return parts.Negative ? -number : number;
}

}  // namespace keplo
