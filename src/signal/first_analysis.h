#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "signal/runs.h"

namespace keplo {

/// Generic protocol of a signal or of a protocol section. A plain number, since it is also the value of
/// GPROTO= in the configuration file.
enum ProtoKinds : std::int16_t {
  kNec = 0,      // pulse distance
  kSony = 1,     // pulse width
  kRc5 = 2,      // biphase
  kCustom = 3,   // only in protocol sections
  kRc6 = 6,      // only from the second look, and no value of GPROTO=
  kUnknown = 99  // only from AnalyseTiming
};

/// Name shown for a generic protocol: "NEC", "SONY", "RC5", "RC6", "UNK" for anything else.
std::string_view ProtoKindName(std::int16_t kind);

/// Counters of run lengths, in samples. Runs of 99 samples or more count at 99; the entries above stay 0 and
/// are only read by the search for multiples of the base time.
using RunHistogram = std::array<std::int16_t, 301>;

/// What the analysis of a capture leaves behind for everyone who works on that capture.
struct Timing {
  RunHistogram RunHist1{};  // runs of 1
  RunHistogram RunHist0{};  // runs of 0
  std::int16_t BaseT = 0;   // base time T, samples
  std::int16_t ProtoKind = kNec;
};

/// Measures base time and line code from the first 25 pairs of runs of a signal.
///
/// Both histograms are rebuilt in any case; BaseT and ProtoKind change only when the result is true. A base
/// time of a signal that fits no line code is a result of true with ProtoKind 99.
/// @return true if a base time was found
bool AnalyseTiming(RunSpan runs, Timing& timing);

/// The commonest lengths of marks and spaces, of which the base time is the mean, samples; 0 if none is of a
/// length that a base time may have.
struct CommonLengths {
  int Mark = 0, Space = 0;
};
CommonLengths CommonLengthsOf(const Timing& timing);

/// Units of a run that is too long for a digit, which becomes a border symbol.
inline constexpr int kBorderUnits = 9;

/// Length of one run in base times.
/// @param run run length, samples
/// @param t base time T, samples
/// @return 1, 2 or 3; kBorderUnits for anything longer
constexpr int RunUnits(int run, int t) {
  // Receivers stretch and shrink single runs by a few samples, the longer ones by more.
  if (run < t + 5) return 1;
  if (run < 2 * t + 6) return 2;
  if (run < 3 * t + 9) return 3;
  return kBorderUnits;
}

}  // namespace keplo
