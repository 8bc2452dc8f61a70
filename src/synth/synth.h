#pragma once

#include <cstdint>
#include <string_view>

#include "formats/pulse_text.h"

namespace keplo {

/// What a receiver, a cheap remote and a thumb make of a signal. The defaults lie in the middle of what
/// recordings of real remotes show, whose extremes are given.
struct SynthOptions {
  int MarkExcessUs = 60;   // marks longer and spaces shorter by this; -40 to 130
  int JitterUs = 15;       // standard deviation of each edge; 1 to 23
  double ClockError = 0;   // 0.02: everything 2 % longer; -0.055 to 0.04
  int GapUs = 90'000;      // silence after the press; 0 writes none
  int Repeats = 2;         // frames, for NEC dittos, after the first; SONY has at least three frames
  std::uint32_t Seed = 1;  // one seed gives one press, on every machine
};

/// One key press as a receiver would record it.
/// @param kind kNec, kSony or kRc5
/// @param bits 1 and 0 in the order sent; for RC5 with start bits and toggle bit
/// @throws std::invalid_argument for another kind, for bits that are none or not 1 and 0, and for options out
/// of all reason
PulseTrain SynthPress(std::int16_t kind, std::string_view bits, const SynthOptions& options);

}  // namespace keplo
