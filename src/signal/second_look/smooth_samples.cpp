#include "signal/second_look/smooth_samples.h"

namespace keplo::robust {

namespace {

/// Samples at which a run longer than interference begins, or goes on for long enough.
/// @param next the word that follows
std::uint64_t LongRuns(std::uint64_t word, std::uint64_t next) {
  const std::uint64_t second = word >> 1U | next << (kBitsPerWord - 1);
  const std::uint64_t third = word >> 2U | next << (kBitsPerWord - 2);
  static_assert(kInterference == 2);
  return word & second & third;
}

}  // namespace

bool SmoothSamples(const SampleWords& samples, SampleWords& smooth) {
  const std::size_t count = samples.Words.size();
  smooth.Size = samples.Size;
  smooth.Words.resize(count);
  std::uint64_t joined = 0;
  std::uint64_t level = 0;  // of the sample before
  for (std::size_t i = 0; i < count; ++i) {
    const bool last = i + 1 == count;
    const std::uint64_t marks = samples.Words[i];
    const std::uint64_t nextMarks = last ? 0 : samples.Words[i + 1];
    const std::uint64_t spaces = ~marks & samples.ValidBits(i);
    const std::uint64_t nextSpaces = last ? 0 : ~nextMarks & samples.ValidBits(i + 1);
    // A long mark raises the level and a long space lowers it; in between it stays. That is how a carry runs
    // through an addition, so that one takes all samples of a word.
    const std::uint64_t rise = LongRuns(marks, nextMarks);
    const std::uint64_t stay = ~LongRuns(spaces, nextSpaces);
    const std::uint64_t carries = (stay + rise + level) ^ stay ^ rise;
    const std::uint64_t smoothed = (rise | (stay & carries)) & samples.ValidBits(i);
    level = smoothed >> (kBitsPerWord - 1);
    joined |= smoothed ^ marks;
    smooth.Words[i] = smoothed;
  }
  return joined != 0;
}

}  // namespace keplo::robust
