#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace keplo {

/// Samples in a word.
inline constexpr std::size_t kBitsPerWord = 64;

/// The samples of a capture, 64 to a word, the earliest in the lowest bit. Keeps its capacity from one
/// capture to the next.
struct SampleWords {
  std::vector<std::uint64_t> Words;  // 0 after the last sample
  std::size_t Size = 0;              // samples

  void Read(std::string_view capture);

  /// Which bits of a word are samples.
  std::uint64_t ValidBits(std::size_t word) const {
    const std::size_t left = Size - word * kBitsPerWord;
    return left >= kBitsPerWord ? ~std::uint64_t{0} : (std::uint64_t{1} << left) - 1;
  }
};

}  // namespace keplo
