#include "synth/synth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "signal/first_analysis.h"

namespace keplo {

namespace {

using Lengths = std::vector<double>;  // base times; marks and spaces in turn, from mark to mark

Lengths NecFrame(std::string_view bits) {
  Lengths lengths = {16, 8};
  for (const char bit : bits) lengths.insert(lengths.end(), {1, bit == '1' ? 3.0 : 1.0});
  lengths.push_back(1);
  return lengths;
}

Lengths NecDitto(std::string_view /*bits*/) { return {16, 4, 1}; }

Lengths SonyFrame(std::string_view bits) {
  Lengths lengths = {4};
  for (const char bit : bits) lengths.insert(lengths.end(), {1, bit == '1' ? 2.0 : 1.0});
  return lengths;
}

Lengths Rc5Frame(std::string_view bits) {
  std::string halves;
  for (const char bit : bits) halves += bit == '1' ? "01" : "10";
  Lengths lengths;
  char last = '0';  // a space at either end is silence
  for (std::size_t i = halves.find('1'); i <= halves.rfind('1'); ++i) {
    if (halves[i] != last) lengths.push_back(0);
    lengths.back() += 1;
    last = halves[i];
  }
  return lengths;
}

/// How a protocol puts a key press on air.
struct OnAir {
  std::int16_t Kind;
  double Unit;    // base time, microseconds
  double Period;  // from frame to frame, microseconds
  int FewestRepeats;
  Lengths (*Frame)(std::string_view bits);
  Lengths (*Repeat)(std::string_view bits);
};

constexpr std::array kOnAir = {
    OnAir{kNec, 562.5, 108'000, 0, NecFrame, NecDitto},
    OnAir{kSony, 600, 45'000, 2, SonyFrame, SonyFrame},
    OnAir{kRc5, 889, 113'800, 0, Rc5Frame, Rc5Frame},
};

constexpr double kLeastGap = 10'000;  // microseconds, after a frame that fills its period

double Sum(const Lengths& lengths) { return std::accumulate(lengths.begin(), lengths.end(), 0.0); }

/// The whole press on air, microseconds.
Lengths PressOnAir(const OnAir& protocol, std::string_view bits, int repeats) {
  Lengths press;
  Lengths frame = protocol.Frame(bits);
  for (int left = std::max(repeats, protocol.FewestRepeats); left >= 0; --left) {
    for (const double units : frame) press.push_back(units * protocol.Unit);
    if (left == 0) break;
    press.push_back(std::max(protocol.Period - Sum(frame) * protocol.Unit, kLeastGap));
    frame = protocol.Repeat(bits);
  }
  return press;
}

constexpr std::int64_t kNanoseconds = 1000;  // in a microsecond

/// Nearly normal noise: the sum of twelve evenly spread numbers, less their mean, has a standard deviation of
/// one such number's range. Whole numbers throughout, and none of the library's distributions, since both
/// those and the rounding of floating point differ between machines.
/// @param deviation standard deviation
std::int64_t Noise(std::mt19937& generator, std::int64_t deviation) {
  constexpr int kTerms = 12;
  constexpr std::int64_t kRange = std::int64_t{1} << 32;
  std::int64_t sum = -kTerms / 2 * kRange;
  for (int term = 0; term < kTerms; ++term) sum += static_cast<std::int64_t>(generator());
  return sum * deviation / kRange;
}

void CheckOptions(const SynthOptions& options) {
  const auto check = [](std::string_view name, double value, double least, double most) {
    if (value >= least && value <= most) return;
    throw std::invalid_argument(std::string(name) + " is out of bounds; expected " + std::to_string(least) +
                                " to " + std::to_string(most) + ".");
  };
  check("The mark excess in microseconds", options.MarkExcessUs, -10'000, 10'000);
  check("The jitter in microseconds", options.JitterUs, 0, 10'000);
  check("The clock error", options.ClockError, -0.5, 0.5);
  check("The gap in microseconds", options.GapUs, 0, kLongestPulse);
  check("The number of repeats", options.Repeats, 0, 1000);
}

}  // namespace

PulseTrain SynthPress(std::int16_t kind, std::string_view bits, const SynthOptions& options) {
  const auto* const protocol =
      std::find_if(kOnAir.begin(), kOnAir.end(), [&](const OnAir& onAir) { return onAir.Kind == kind; });
  if (protocol == kOnAir.end()) {
    throw std::invalid_argument("No press can be made of protocol " + std::to_string(kind) +
                                "; expected NEC, SONY or RC5.");
  }
  if (bits.empty() || bits.find_first_not_of("01") != std::string_view::npos) {
    throw std::invalid_argument("No press can be made of the bits \"" + std::string(bits) +
                                "\"; expected digits 0 and 1 in the order sent.");
  }

  CheckOptions(options);

  std::mt19937 generator(options.Seed);
  PulseTrain train;
  std::int64_t sent = 0;      // end of the run at the remote, nanoseconds
  std::int64_t recorded = 0;  // the same at the receiver, microseconds
  for (const double length : PressOnAir(*protocol, bits, options.Repeats)) {
    sent += std::llround(length * (1 + options.ClockError) * kNanoseconds);
    const int late = train.size() % 2 == 0 ? options.MarkExcessUs : 0;
    const std::int64_t end = (sent + Noise(generator, options.JitterUs * kNanoseconds)) / kNanoseconds + late;
    train.push_back(static_cast<int>(std::max<std::int64_t>(end - recorded, 1)));
    recorded += train.back();
  }
  if (options.GapUs > 0) train.push_back(options.GapUs);
  return train;
}

}  // namespace keplo
