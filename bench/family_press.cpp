#include "family_press.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "formats/families.h"
#include "signal/decode.h"
#include "signal/rc6.h"

namespace keplo::bench {

namespace {

constexpr int kSilenceAfter = 90'000;  // microseconds

std::string Inverse(std::string digits) {
  for (char& digit : digits) digit = digit == '1' ? '0' : '1';
  return digits;
}

std::string WithInverse(Dice& dice, int digits) {
  const std::string random = dice.Digits(digits);
  return random + Inverse(random);
}

PressOnAir OfFamily(const char* family, const std::string& digits, int frames) {
  return {PressLengths(SignalOf(FamilyNamed(family), digits), frames - 1), digits};
}

PressOnAir Nec(Dice& dice, int frames) {
  return OfFamily("NEC", WithInverse(dice, 8) + WithInverse(dice, 8), frames);
}
PressOnAir Nec42(Dice& dice, int frames) {
  return OfFamily("NEC42", WithInverse(dice, 13) + WithInverse(dice, 8), frames);
}
PressOnAir Nec48(Dice& dice, int frames) {
  CodedSignal signal = SignalOf(FamilyNamed("NEC"), dice.Digits(48));
  signal.Again.FromStart = false;
  signal.Again.Gap = 40'000;
  return {PressLengths(signal, frames - 1), signal.Digits};
}
PressOnAir Samsung(Dice& dice, int frames) {
  const std::string device = dice.Digits(8);
  return OfFamily("SAMSUNG", device + device + WithInverse(dice, 8), frames);
}
/// The digits that make an even number of ones with the digits ahead of them, so many places apart.
std::string EvenColumns(const std::string& digits, std::size_t columns) {
  std::string sums(columns, '0');
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (digits[i] == '1') sums[i % columns] = sums[i % columns] == '0' ? '1' : '0';
  }
  return sums;
}

PressOnAir Kaseikyo(Dice& dice, int frames) {
  const std::string vendor = dice.Digits(16);
  const std::string rest = EvenColumns(vendor, 4) + dice.Digits(20);
  return OfFamily("KASEIKYO", vendor + rest + EvenColumns(rest, 8), frames);
}
PressOnAir Jvc(Dice& dice, int frames) { return OfFamily("JVC", dice.Digits(16), frames); }
PressOnAir Rca(Dice& dice, int frames) { return OfFamily("RCA", WithInverse(dice, 12), frames); }

template <int kDigits>
PressOnAir Sony(Dice& dice, int frames) {
  return OfFamily("SONY", dice.Digits(kDigits), frames);
}

PressOnAir Rc5(Dice& dice, int frames) {
  PressOnAir press = OfFamily("RC5", "11" + dice.Digits(12), frames);
  press.Code[kToggleBitOffset] = '0';
  return press;
}

template <int kDigits>
PressOnAir Rc6(Dice& dice, int frames) {
  constexpr int kUnit = 444, kGap = 70'000;
  const std::string code = (kDigits == 20 ? "1000" : "111011") + dice.Digits(kDigits == 20 ? 16 : 30);
  const std::string halves = std::string(kRc6Leader) + Rc6Halves(code, dice.From(0, 1) == 1, "10", "01");
  PulseTrain frame;
  for (std::size_t i = 0; i <= halves.rfind('1'); ++i) {
    if (i == 0 || halves[i] != halves[i - 1]) frame.push_back(0);
    frame.back() += kUnit;
  }
  return {JoinFrames(std::vector<PulseTrain>(static_cast<std::size_t>(frames), frame), kGap), code};
}

/// Each frame is one of the two.
PressOnAir TwoFrames(Dice& dice, int frames) {
  constexpr int kGap = 25'000;
  std::string one = dice.Digits(16), other = dice.Digits(16);
  while (other == one) other = dice.Digits(16);
  std::vector<PulseTrain> sent;
  for (int i = 0; i <= 2 * frames; ++i)
    sent.push_back(DistanceFrame({4480, 2240}, 560, 560, 1680, i % 2 == 0 ? one : other));
  return {JoinFrames(sent, kGap), std::min(one, other) + std::max(one, other)};
}

constexpr std::array kFamilies = {PressFamily{"NEC", Nec},           PressFamily{"NEC 42", Nec42},
                                  PressFamily{"NEC 48", Nec48},      PressFamily{"Samsung", Samsung},
                                  PressFamily{"Kaseikyo", Kaseikyo}, PressFamily{"JVC", Jvc},
                                  PressFamily{"RCA", Rca},           PressFamily{"SONY 12", Sony<12>},
                                  PressFamily{"SONY 15", Sony<15>},  PressFamily{"SONY 20", Sony<20>},
                                  PressFamily{"RC5", Rc5},           PressFamily{"RC6", Rc6<20>},
                                  PressFamily{"RC6 of 36", Rc6<36>}, PressFamily{"two frames", TwoFrames}};

/// Nearly normal noise of a standard deviation.
int Noise(Dice& dice, int deviation) {
  int sum = -6000;
  for (int term = 0; term < 12; ++term) sum += dice.From(0, 1000);
  return sum * deviation / 1000;
}

}  // namespace

std::span<const PressFamily> PressFamilies() { return kFamilies; }

PulseTrain JoinFrames(std::span<const PulseTrain> frames, int gap) {
  PulseTrain joined;
  for (const PulseTrain& frame : frames) {
    if (!joined.empty()) joined.push_back(gap);
    joined.insert(joined.end(), frame.begin(), frame.end());
  }
  return joined;
}

PulseTrain DistanceFrame(Pulse lead, int mark, int zero, int one, const std::string& digits) {
  PulseTrain frame;
  if (lead.Mark > 0) frame = {lead.Mark, lead.Space};
  for (const char digit : digits) frame.insert(frame.end(), {mark, digit == '1' ? one : zero});
  frame.push_back(mark);
  return frame;
}

PulseTrain Received(const PulseTrain& onAir, int excess, int jitter, int clock, Dice& dice) {
  PulseTrain train;
  double sent = 0;
  int recorded = 0;
  const std::size_t size = onAir.size() - (onAir.size() % 2 == 0 ? 1 : 0);
  for (std::size_t i = 0; i < size; ++i) {
    sent += onAir[i] * (1 + clock / 1000.0);
    const int late = i % 2 == 0 ? excess : 0;
    train.push_back(std::max(static_cast<int>(sent) + Noise(dice, jitter) + late - recorded, 1));
    recorded += train.back();
  }
  train.push_back(kSilenceAfter);
  return train;
}

PulseTrain ReceivedAsReal(const PulseTrain& onAir, Dice& dice) {
  const int excess = dice.From(-40, 130), jitter = dice.From(1, 25), clock = dice.From(-55, 40);
  return Received(onAir, excess, jitter, clock, dice);
}

}  // namespace keplo::bench
