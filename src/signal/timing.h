#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace keplo {

/// Generic protocol of a signal or of a protocol section. A plain number, since it is also the value of
/// GPROTO= in the configuration file.
enum ProtoKinds : std::int16_t {
  kNec = 0,      // pulse distance
  kSony = 1,     // pulse width
  kRc5 = 2,      // biphase
  kCustom = 3,   // only in protocol sections
  kUnknown = 99  // only from AnalyseTiming
};

/// Name shown for a generic protocol: "NEC", "SONY", "RC5", "UNK" for anything else.
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

/// Measures base time and line code from the first 25 pairs of runs of a sample string.
///
/// Both histograms are rebuilt in any case; BaseT and ProtoKind change only when the result is true. A base
/// time of a signal that fits no line code is a result of true with ProtoKind 99.
/// @return true if a base time was found
bool AnalyseTiming(std::string_view samples, Timing& timing);

/// Length of one run in base times.
/// @param run run length, samples
/// @param t base time T, samples
/// @return 1, 2 or 3; 9 for anything longer, which the walks turn into a mark
constexpr int RunUnits(int run, int t) {
  // Receivers stretch and shrink single runs by a few samples, the longer ones by more.
  if (run < t + 5) return 1;
  if (run < 2 * t + 6) return 2;
  if (run < 3 * t + 9) return 3;
  return 9;
}

/// Length of the run of one character that begins at an offset (from 0); 0 if another character stands there.
/// Looks at eight characters at a time.
inline std::size_t RunLength(std::string_view samples, std::size_t offset, char character) {
  constexpr std::uint64_t kEachByte = 0x0101010101010101;
  const std::uint64_t run = kEachByte * static_cast<unsigned char>(character);
  std::size_t end = offset;
  for (; end + sizeof run <= samples.size(); end += sizeof run) {
    std::uint64_t word = 0;
    std::memcpy(&word, samples.data() + end, sizeof word);
    const std::uint64_t differing = word ^ run;
    if (differing == 0) continue;
    constexpr bool kFirstIsLowest = std::endian::native == std::endian::little;
    const int bits = kFirstIsLowest ? std::countr_zero(differing) : std::countl_zero(differing);
    return end + static_cast<std::size_t>(bits) / 8 - offset;
  }
  while (end < samples.size() && samples[end] == character) ++end;
  return end - offset;
}

}  // namespace keplo
