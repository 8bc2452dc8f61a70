#include "signal/raw/raw_digits.h"

namespace keplo {

namespace {

constexpr std::size_t kLevelDigits = 24, kCheckDigits = 12;
constexpr std::size_t kRawDigits = kRawHead.size() + kLevelDigits + kCheckDigits;

std::string BinaryDigits(std::uint64_t number, std::size_t count) {
  std::string digits;
  for (std::size_t i = 0; i < count; ++i, number >>= 1U) digits += (number & 1U) != 0 ? '1' : '0';
  return digits;
}

/// The upper half of a hash depends on each character of a short text, the lower half on the last ones most.
std::uint64_t MixedHash(std::string_view text) {
  const std::uint64_t hash = TextHash(text);
  return hash ^ hash >> 32U;
}

std::string CheckOf(std::string_view digits) { return BinaryDigits(MixedHash(digits), kCheckDigits); }

}  // namespace

std::uint64_t TextHash(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char character : text) {
    hash ^= static_cast<unsigned char>(character);
    hash *= 0x100000001b3U;
  }
  return hash;
}

std::string DrawRawDigits(const std::vector<int>& levels,
                          const std::function<bool(std::string_view)>& isTaken) {
  std::string drawnFrom;
  for (const int level : levels) drawnFrom += static_cast<char>('0' + level);
  while (true) {
    const std::string own = BinaryDigits(MixedHash(drawnFrom), kLevelDigits);
    std::string digits = std::string(kRawHead).append(own).append(CheckOf(own));
    if (!isTaken(digits)) return digits;
    drawnFrom += '+';
  }
}

bool AreRawDigits(std::string_view digits) {
  return digits.size() == kRawDigits && digits.substr(0, kRawHead.size()) == kRawHead &&
         digits.substr(kRawHead.size() + kLevelDigits) ==
             CheckOf(digits.substr(kRawHead.size(), kLevelDigits));
}

}  // namespace keplo
