#include "line/synth.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "failure.h"
#include "signal/timing.h"

namespace keplo {

namespace {

constexpr double kNecUnit = 562.5;  // microseconds
constexpr double kSonyUnit = 600;
constexpr double kRc5Unit = 889;

constexpr double kNecPeriod = 108'000;
constexpr double kSonyPeriod = 45'000;
constexpr double kRc5Period = 113'800;

constexpr int kSonyFewestFrames = 3;

using Lengths = std::vector<double>;  // marks and spaces in turn, mark first; ends with a mark

Lengths NecFrame(std::string_view bits) {
  Lengths lengths = {16 * kNecUnit, 8 * kNecUnit};
  for (const char bit : bits) {
    lengths.push_back(kNecUnit);
    lengths.push_back(bit == '1' ? 3 * kNecUnit : kNecUnit);
  }
  lengths.push_back(kNecUnit);
  return lengths;
}

Lengths NecDitto() { return {16 * kNecUnit, 4 * kNecUnit, kNecUnit}; }

Lengths SonyFrame(std::string_view bits) {
  Lengths lengths = {4 * kSonyUnit};
  for (const char bit : bits) {
    lengths.push_back(kSonyUnit);
    lengths.push_back(bit == '1' ? 2 * kSonyUnit : kSonyUnit);
  }
  return lengths;
}

Lengths Rc5Frame(std::string_view bits) {
  std::string halves;
  for (const char bit : bits) halves += bit == '1' ? "01" : "10";
  // Spaces at either end are silence.
  halves = halves.substr(halves.find('1'), halves.rfind('1') + 1 - halves.find('1'));
  Lengths lengths;
  char last = '0';
  for (const char half : halves) {
    if (half != last) lengths.push_back(0);
    lengths.back() += kRc5Unit;
    last = half;
  }
  return lengths;
}

double LengthOf(const Lengths& lengths) {
  double sum = 0;
  for (const double length : lengths) sum += length;
  return sum;
}

/// The press on air: its frames, each at the period behind the one before.
Lengths OnAir(std::int16_t kind, std::string_view bits, int repeats) {
  Lengths frame;
  double period = 0;
  switch (kind) {
    case kNec:
      frame = NecFrame(bits);
      period = kNecPeriod;
      break;
    case kSony:
      frame = SonyFrame(bits);
      period = kSonyPeriod;
      repeats = std::max(repeats, kSonyFewestFrames - 1);
      break;
    case kRc5:
      frame = Rc5Frame(bits);
      period = kRc5Period;
      break;
    default:
      throw Failure(
          5, "No press can be made of protocol " + std::to_string(kind) + "; expected NEC, SONY or RC5");
  }
  Lengths press = frame;
  double frameLength = LengthOf(frame);
  const Lengths repeat = kind == kNec ? NecDitto() : frame;
  for (int count = 0; count < repeats; ++count) {
    press.push_back(std::max(period - frameLength, kSonyUnit * 10));
    press.insert(press.end(), repeat.begin(), repeat.end());
    frameLength = LengthOf(repeat);
  }
  return press;
}

/// Near-normal noise of standard deviation 1 by a sum of twelve, with no help of the library's distributions,
/// which differ between machines.
double Noise(std::mt19937& generator) {
  constexpr int kTerms = 12;  // of variance 1/12 each
  double sum = 0;
  for (int term = 0; term < kTerms; ++term) sum += static_cast<double>(generator()) / 4294967296.0;
  return sum - kTerms / 2.0;
}

}  // namespace

PulseTrain SynthPress(std::int16_t kind, std::string_view bits, const SynthOptions& options) {
  if (bits.empty() || bits.find_first_not_of("01") != std::string_view::npos) {
    throw Failure(5,
                  "No press can be made of the bits \"" + std::string(bits) + "\"; expected digits 0 and 1");
  }
  const Lengths onAir = OnAir(kind, bits, options.Repeats);

  std::mt19937 generator(options.Seed);
  PulseTrain train;
  double edge = 0;         // of the remote
  long long recorded = 0;  // of the receiver
  for (std::size_t i = 0; i < onAir.size(); ++i) {
    edge += onAir[i] * (1 + options.ClockError);
    const double late = (i % 2 == 0 ? options.MarkExcessUs : 0) + Noise(generator) * options.JitterUs;
    const long long seen = std::max(std::llround(edge + late), recorded + 1);
    train.push_back(static_cast<int>(seen - recorded));
    recorded = seen;
  }
  if (options.GapUs > 0) train.push_back(options.GapUs);
  return train;
}

}  // namespace keplo
