#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "signal/sample_words.h"

namespace keplo {

/// Lengths of the runs of a signal in samples, marks and spaces in turn. The first is a mark, of length 0
/// where the samples begin with a space; the last one ends the samples.
using RunSpan = std::span<const int>;

inline bool EndsInMark(RunSpan runs) { return runs.size() % 2 == 1; }

/// Finds the runs of captures; reuses its buffer from one capture to the next.
class RunReader {
 public:
  /// @return valid until the next call; empty without samples
  RunSpan Read(const SampleWords& samples);

 private:
  std::vector<int> lengths_;
};

}  // namespace keplo
