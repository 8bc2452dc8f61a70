#include "signal/sample_words.h"

#include <bit>
#include <cstring>

#include "signal/sample_bits.h"

namespace keplo {

namespace {

/// Turns every byte of a word around.
constexpr std::uint64_t WithReversedBytes(std::uint64_t word) {
  constexpr std::uint64_t kOnes = 0x5555555555555555;
  constexpr std::uint64_t kPairs = 0x3333333333333333;
  constexpr std::uint64_t kFours = 0x0F0F0F0F0F0F0F0F;
  word = (word >> 1U & kOnes) | (word & kOnes) << 1U;
  word = (word >> 2U & kPairs) | (word & kPairs) << 2U;
  return (word >> 4U & kFours) | (word & kFours) << 4U;
}

/// @param bytes the earliest first, each with its earliest sample in the highest bit
std::uint64_t WordOf(std::uint64_t bytes) {
  if constexpr (std::endian::native == std::endian::big) bytes = __builtin_bswap64(bytes);
  return WithReversedBytes(bytes);
}

}  // namespace

void SampleWords::Read(std::string_view capture) {
  constexpr std::size_t kBytesPerWord = kBitsPerWord / kBitsPerByte;
  Size = capture.size() * kBitsPerByte;
  Words.resize((capture.size() + kBytesPerWord - 1) / kBytesPerWord);
  const char* byte = capture.data();
  std::uint64_t bytes = 0;
  for (std::size_t word = 0; word < capture.size() / kBytesPerWord; ++word) {
    std::memcpy(&bytes, byte, kBytesPerWord);
    Words[word] = WordOf(bytes);
    byte += kBytesPerWord;
  }
  const std::size_t left = capture.size() % kBytesPerWord;
  if (left == 0) return;
  bytes = 0;
  std::memcpy(&bytes, byte, left);
  Words.back() = WordOf(bytes);
}

}  // namespace keplo
