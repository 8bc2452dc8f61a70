#include "signal/second_look/digit_checks.h"

#include <initializer_list>

namespace keplo::robust {

namespace {

constexpr std::size_t kByte = 8, kNibble = 4;  // digits

/// Columns of digits that a check goes over, and in which of them it fails.
struct CheckedColumns {
  std::size_t Failed = 0;
  std::size_t Last = 0;  // column that fails
};

template <typename Holds>
CheckedColumns Check(std::size_t columns, Holds holds) {
  CheckedColumns checked;
  for (std::size_t column = 0; column < columns; ++column) {
    if (holds(column)) continue;
    ++checked.Failed;
    checked.Last = column;
  }
  return checked;
}

/// NEC: the second byte is the inverse of the first one, or a part of the address of its own, or as with
/// Samsung the same once more; the fourth is the inverse of the third.
SuspectDigits SuspectsOf32(std::string_view digits) {
  const auto differ = [&](std::size_t place) { return digits[place] != digits[place + kByte]; };
  const CheckedColumns inverse = Check(kByte, differ);
  const CheckedColumns same = Check(kByte, [&](std::size_t place) { return !differ(place); });
  const CheckedColumns address = same.Failed < inverse.Failed ? same : inverse;
  const CheckedColumns command = Check(kByte, [&](std::size_t place) { return differ(2 * kByte + place); });
  SuspectDigits suspects;
  // The address proves nothing by itself: many remotes of lamps have one that is one digit off.
  if (command.Failed != 1) return suspects;
  suspects.Add(2 * kByte + command.Last);
  suspects.Add(3 * kByte + command.Last);
  suspects.SpoilCode = address.Failed <= 1;
  return suspects;
}

/// Whether digits at these places hold an even number of ones.
bool AreEven(std::string_view digits, std::initializer_list<std::size_t> places) {
  bool even = true;
  for (const std::size_t place : places) even = even == (digits[place] == '0');
  return even;
}

/// Kaseikyo: a nibble that makes those of the vendor's 16 digits even, and a last byte that does so with the
/// three ahead of it.
SuspectDigits SuspectsOf48(std::string_view digits) {
  constexpr std::size_t kFirst = 2 * kByte;
  // Air conditioners send each byte and its inverse instead.
  const CheckedColumns inverse = Check(3 * kByte, [&](std::size_t column) {
    const std::size_t place = column / kByte * kFirst + column % kByte;
    return digits[place] != digits[place + kByte];
  });
  if (inverse.Failed == 0) return {};
  const CheckedColumns vendor = Check(kNibble, [&](std::size_t place) {
    return AreEven(digits,
                   {place, place + kNibble, place + 2 * kNibble, place + 3 * kNibble, place + kFirst});
  });
  const CheckedColumns rest = Check(kByte, [&](std::size_t place) {
    const std::size_t first = kFirst + place;
    return AreEven(digits, {first, first + kByte, first + 2 * kByte, first + 3 * kByte});
  });
  SuspectDigits suspects;
  suspects.SpoilCode = vendor.Failed + rest.Failed == 1 ||
                       (vendor.Failed == 1 && rest.Failed == 1 && vendor.Last == rest.Last);
  return suspects;
}

}  // namespace

SuspectDigits SuspectsOf(std::string_view digits) {
  if (digits.size() == 4 * kByte) return SuspectsOf32(digits);
  return digits.size() == 6 * kByte ? SuspectsOf48(digits) : SuspectDigits{};
}

}  // namespace keplo::robust
