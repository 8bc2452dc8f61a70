#include "signal/sample_bits.h"

#include <array>
#include <cstring>

namespace keplo {

namespace {

using ByteText = std::array<char, kBitsPerByte>;

constexpr std::array<ByteText, 256> MakeByteTexts() {
  std::array<ByteText, 256> texts{};
  for (std::size_t code = 0; code < texts.size(); ++code) {
    for (std::size_t bit = 0; bit < kBitsPerByte; ++bit) {
      texts[code][bit] = (code >> (kBitsPerByte - 1 - bit)) % 2 == 1 ? '1' : '0';
    }
  }
  return texts;
}

constexpr auto kByteTexts = MakeByteTexts();

}  // namespace

std::string SamplesToBits(std::string_view capture) {
  std::string bits(capture.size() * kBitsPerByte, '0');
  char* out = bits.data();
  for (const char character : capture) {
    std::memcpy(out, kByteTexts[static_cast<unsigned char>(character)].data(), kBitsPerByte);
    out += kBitsPerByte;
  }
  return bits;
}

}  // namespace keplo
