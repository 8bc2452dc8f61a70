#include "signal/second_look/smooth_samples.h"

#include <algorithm>

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

bool HasInterference(RunSpan runs) {
  // A space at the beginning is a part of the silence before it.
  if (!runs.empty() && runs.front() == 0) runs = runs.subspan(2);
  return std::any_of(runs.begin(), runs.end(), [](int length) { return length <= kInterference; });
}

void SmoothSamples(const SampleWords& samples, SampleWords& smooth) {
  const std::size_t count = samples.Words.size();
  smooth.Size = samples.Size;
  smooth.Words.resize(count);
  std::uint64_t level = 0;  // of the sample before
  const auto marksOf = [&](std::size_t word) { return word < count ? samples.Words[word] : 0; };
  const auto validOf = [&](std::size_t word) { return word < count ? samples.ValidBits(word) : 0; };
  std::uint64_t marks = marksOf(0), valid = validOf(0);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t nextMarks = marksOf(i + 1), nextValid = validOf(i + 1);
    // A long mark raises the level and a long space lowers it; in between it stays. That is how a carry runs
    // through an addition, so that one takes all samples of a word.
    const std::uint64_t rise = LongRuns(marks, nextMarks);
    const std::uint64_t stay = ~LongRuns(~marks & valid, ~nextMarks & nextValid);
    const std::uint64_t carries = (stay + rise + level) ^ stay ^ rise;
    const std::uint64_t smoothed = (rise | (stay & carries)) & valid;
    level = smoothed >> (kBitsPerWord - 1);
    smooth.Words[i] = smoothed;
    marks = nextMarks;
    valid = nextValid;
  }
}

}  // namespace keplo::robust
