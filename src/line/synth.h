#pragma once

#include <cstdint>
#include <string_view>

#include "formats/pulse_text.h"

namespace keplo {

/// What a receiver, a cheap remote and a thumb make of a signal; the defaults lie in the middle of what real
/// recordings show.
struct SynthOptions {
  int MarkExcessUs = 60;    // marks longer, spaces shorter by this; receivers show -50 to 150
  int JitterUs = 15;        // standard deviation of each edge; real recordings show 2 to 30
  double ClockError = 0.0;  // part by which the clock of the remote is slow; 0.02 is 2 % longer
  int GapUs = 90'000;       // silence behind the press
  int Repeats = 2;          // frames (NEC: dittos) behind the first; SONY sends at least three frames in all
  std::uint32_t Seed = 1;   // the same seed gives the same press on every machine
};

/// One key press as a receiver would record it.
/// @param kind kNec, kSony or kRc5
/// @param bits 1 and 0 in the order sent; RC5 with start bits and toggle bit
/// @throws Failure for another kind and for bits that are not 1 and 0 or none at all
PulseTrain SynthPress(std::int16_t kind, std::string_view bits, const SynthOptions& options);

}  // namespace keplo
