#include "formats/families.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

namespace keplo {

namespace {

constexpr int kNecPeriod = 108'000;  // microseconds, of NEC and its kin

constexpr Coding Distance(int unit, int syncMark, int syncSpace, int zero = 1, int one = 3) {
  return {LineCode::Distance, unit,         {syncMark * unit, syncSpace * unit}, {unit, zero * unit},
          {unit, one * unit}, /*tail*/ unit};
}

// NEC's own lengths are rounded in its papers: a unit of 562.5.
constexpr Coding kNecCode = {LineCode::Distance, 562, {9000, 4500}, {562, 562}, {562, 1688}, 562};
constexpr Coding kSonyCode = {LineCode::Width, 600, {2400, 600}, {600, 600}, {1200, 600}, 0};
constexpr Coding kRc5Code = {LineCode::Biphase, 889, {0, 0}, {889, 889}, {889, 889}, 0};

constexpr Repeat kNecShort = {RepeatKind::Short, kNecPeriod, true, {9000, 2250}};
constexpr Repeat kNecFrame = {RepeatKind::Frame, kNecPeriod, true, {}};

constexpr Repeat FrameEvery(int period) { return {RepeatKind::Frame, period, true, {}}; }
constexpr Repeat FrameAfter(int gap) { return {RepeatKind::Frame, gap, false, {}}; }

// Units, repeats and carriers as the protocols' definitions have them. Ahead stands what a signal of those
// lengths most probably is.
constexpr std::array kFamilies = {
    Family{"NEC", 32, kNecCode, kNecShort, 38'000},
    Family{"NEC2", 32, kNecCode, kNecFrame, 38'000},
    Family{"NEC42", 42, kNecCode, kNecShort, 38'000},
    Family{"PIONEER", 32, kNecCode, kNecFrame, 40'000},
    Family{"SAMSUNG", 32, Distance(560, 8, 8), FrameEvery(kNecPeriod), 38'000},
    Family{"SONY", 0, kSonyCode, FrameEvery(45'000), 40'000},
    Family{"RC5", 14, kRc5Code, FrameEvery(113'778), 36'000},
    Family{"KASEIKYO", 48, Distance(432, 8, 4), FrameAfter(173 * 432), 37'000},
    Family{"JVC", 16, Distance(527, 16, 8), {RepeatKind::Body, 45 * 527, false, {}}, 38'000},
    Family{"AIWA", 42, Distance(550, 16, 8), {RepeatKind::Short, kNecPeriod, true, {8800, 2200}}, 38'000},
    Family{"RCA", 24, Distance(460, 8, 8, 2, 4), FrameAfter(8000), 58'000},
    Family{"MITSUBISHI", 16, Distance(300, 0, 0, 3, 7), FrameAfter(80 * 300), 32'600},
};

bool IsNear(int length, int wanted, int unit) {
  return std::abs(length - wanted) <= std::max(unit * 3 / 10, wanted / 8);
}

bool IsNear(const Pulse& pulse, const Pulse& wanted, int unit) {
  return IsNear(pulse.Mark, wanted.Mark, unit) && IsNear(pulse.Space, wanted.Space, unit);
}

bool HasLengthsOf(const Coding& code, const Coding& wanted) {
  return code.Line == wanted.Line && IsNear(code.Sync, wanted.Sync, wanted.Unit) &&
         IsNear(code.Zero, wanted.Zero, wanted.Unit) && IsNear(code.One, wanted.One, wanted.Unit);
}

bool HasDigitsOf(std::string_view digits, const Family& family) {
  const std::size_t count = digits.size();
  if (family.Digits == 0) return count == 12 || count == 15 || count == 20;
  return count == static_cast<std::size_t>(family.Digits);
}

}  // namespace

const Family& FamilyNamed(std::string_view name) {
  const auto* const found = std::find_if(kFamilies.begin(), kFamilies.end(),
                                         [&](const Family& family) { return family.Name == name; });
  if (found == kFamilies.end()) throw std::logic_error("no protocol family " + std::string(name));
  return *found;
}

const Family* FamilyOf(const CodedSignal& signal, std::optional<int> carrier) {
  const Family* first = nullptr;
  for (const Family& family : kFamilies) {
    if (!HasDigitsOf(signal.Digits, family) || !HasLengthsOf(signal.Code, family.Code)) continue;
    const bool near = !carrier || std::abs(*carrier - family.Carrier) * 40 < family.Carrier;
    const bool sameRepeat =
        signal.Again.Kind == RepeatKind::Unknown || signal.Again.Kind == family.Again.Kind;
    if (near && sameRepeat) return &family;
    if (first == nullptr) first = &family;
  }
  return first;
}

bool HasOwnCarrier(const RemoteKey& key, const Family& family) {
  return key.Carrier && std::abs(*key.Carrier - family.Carrier) * 100 > family.Carrier;
}

bool HasOwnRepeat(const RemoteKey& key, const Family& family) {
  return key.Coded && key.Coded->Again.Kind != RepeatKind::Unknown &&
         key.Coded->Again.Kind != family.Again.Kind;
}

std::optional<CodedSignal> ReadPress(const PulseTrain& press, std::optional<int> carrier) {
  std::optional<CodedSignal> signal = ReadDigits(press);
  if (!signal) return std::nullopt;
  // One press seldom shows how a held key goes on, and three equal ones look like a frame that is repeated.
  Repeat& again = signal->Again;
  const Repeat heard = again;
  again.Kind = RepeatKind::Unknown;
  const Family* const family = FamilyOf(*signal, carrier);
  const bool isNec = family != nullptr && family->Again.Kind == RepeatKind::Short;
  const bool isTold = heard.Kind == RepeatKind::Short || (heard.Kind != RepeatKind::Unknown && !isNec);
  if (family == nullptr || isTold) {
    again = heard;
    return signal;
  }
  again = family->Again;
  if (heard.Gap > 0 && (!isNec || heard.Kind != RepeatKind::Unknown)) {
    again.Gap = heard.Gap;
    again.FromStart = false;
  }
  return signal;
}

void TakeParts(PulseTrain once, const PulseTrain& again, RemoteKey& key) {
  // A part that ends in a mark has no gap after it to go on from.
  const bool goesOn = once.size() % 2 == 0 && !again.empty(), hasBoth = !once.empty();
  if (goesOn) once.insert(once.end(), again.begin(), again.end());
  key.Lengths = std::move(once);
  if (!goesOn || again.size() % 2 != 0) return;
  // What is only repeated follows itself.
  PulseTrain held = key.Lengths;
  held.insert(held.end(), again.begin(), again.end());
  key.Coded = ReadPress(held, key.Carrier);
  // Of a part that stands alone nothing tells whether it is all that a held key sends.
  const std::optional<CodedSignal> heard = hasBoth ? ReadDigits(held) : std::nullopt;
  if (key.Coded && heard && heard->Again.Kind == RepeatKind::Frame) key.Coded->Again = heard->Again;
}

CodedSignal SignalOf(const Family& family, std::string digits) {
  return {family.Code, family.Again, std::move(digits), std::nullopt};
}

DigitText& DigitText::Low(std::uint64_t value, int bits) {
  for (int bit = 0; bit < bits; ++bit) digits_ += (value >> bit & 1U) != 0 ? '1' : '0';
  return *this;
}

DigitText& DigitText::High(std::uint64_t value, int bits) {
  for (int bit = bits - 1; bit >= 0; --bit) digits_ += (value >> bit & 1U) != 0 ? '1' : '0';
  return *this;
}

std::uint64_t HighFirst(std::string_view digits) {
  std::uint64_t value = 0;
  for (const char digit : digits) value = value << 1U | (digit == '1' ? 1U : 0U);
  return value;
}

std::uint64_t LowFirst(std::string_view digits) {
  return HighFirst(std::string(digits.rbegin(), digits.rend()));
}

std::optional<std::size_t> FirstDifference(std::string_view left, std::string_view right) {
  if (left.size() != right.size() || left == right) return std::nullopt;
  const auto place = std::mismatch(left.begin(), left.end(), right.begin()).first;
  return static_cast<std::size_t>(place - left.begin());
}

bool AreInverse(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(), [](char a, char b) { return a != b; });
}

}  // namespace keplo
