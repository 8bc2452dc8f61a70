#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "signal/runs.h"
#include "signal/sample_bits.h"

namespace keplo {

/// A signal as its lengths: marks and spaces in turn from its first mark to its last, microseconds.
using RawLengths = std::vector<int>;

/// A command that no analysis reads, kept as lengths.
struct RawSignal {
  std::string Digits;             // its code, see DrawRawDigits
  std::vector<RawLengths> Forms;  // more than one where the remote sends them in turn
};

/// Spaces from this length on part the frames of a press, microseconds. Remotes repeat a frame after 7 ms and
/// more, and the spaces after their leaders last up to 4.5 ms.
inline constexpr int kRawGap = 5000;

/// The same in a signal, microseconds: more where the spaces of its digits are nearly as long as kRawGap.
/// @param unit of the lengths, microseconds
int RawGapOf(RunSpan lengths, double unit = 1);

/// Fewer lengths tell nothing: a leader and 7 digits, of which fewer are a fragment in any line code.
inline constexpr std::size_t kFewestRawLengths = 17;

/// What a capture holds of a signal.
struct HeardLengths {
  RunSpan Runs;                            // from the first mark to the last that was heard whole, samples
  bool Cut = false;                        // the samples ended before the signal did
  double SampleTime = kNominalSampleTime;  // microseconds
  int Gap = kRawGap;                       // of the whole signal, see RawGapOf

  double Us(std::size_t i) const { return Runs[i] * SampleTime; }
  /// Whether a length is a space that parts two frames.
  bool IsGap(std::size_t i) const { return i % 2 == 1 && Us(i) >= Gap; }
  /// The same without what stands before a length.
  HeardLengths From(std::size_t i) const { return {Runs.subspan(i), Cut, SampleTime, Gap}; }
  /// So many lengths, of which the last is heard whole.
  HeardLengths Part(std::size_t first, std::size_t number) const {
    return {Runs.subspan(first, number), false, SampleTime, Gap};
  }
};

/// @param runs as RunReader gives them
/// @param sampleTime microseconds
HeardLengths HeardIn(RunSpan runs, double sampleTime = kNominalSampleTime);

/// How many lengths stand before the first long space.
std::size_t FirstFrameOf(const HeardLengths& heard);

}  // namespace keplo
