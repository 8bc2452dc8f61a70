#include "signal/runs.h"

#include <bit>

namespace keplo {

RunSpan RunReader::Read(const SampleWords& samples) {
  if (samples.Size == 0) return {};
  // Each sample may end a run, and a first mark of length 0 may stand before them.
  if (lengths_.size() <= samples.Size) lengths_.resize(samples.Size + 1);
  int* end = lengths_.data();
  std::uint64_t before = 1;  // as if a mark came first
  int begin = 0;             // of the run, from the word on that is looked at
  for (std::size_t i = 0; i < samples.Words.size(); ++i) {
    const std::uint64_t word = samples.Words[i];
    std::uint64_t edges = (word ^ (word << 1U | before)) & samples.ValidBits(i);
    before = word >> (kBitsPerWord - 1);
    for (; edges != 0; edges &= edges - 1) {
      const int edge = std::countr_zero(edges);
      *end++ = edge - begin;
      begin = edge;
    }
    begin -= static_cast<int>(kBitsPerWord);
  }
  const std::size_t looked = samples.Words.size() * kBitsPerWord;
  *end++ = static_cast<int>(samples.Size) - static_cast<int>(looked) - begin;
  return {lengths_.data(), static_cast<std::size_t>(end - lengths_.data())};
}

}  // namespace keplo
