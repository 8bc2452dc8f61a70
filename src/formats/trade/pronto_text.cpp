#include "formats/trade/pronto_text.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "formats/families.h"
#include "formats/irp.h"
#include "formats/trade/reading.h"

namespace keplo::trade {

namespace {

constexpr double kProntoClock = 0.241246;  // microseconds
constexpr std::uint16_t kTypeLearned = 0x0000, kTypeNotModulated = 0x0100, kTypeRc5 = 0x5000,
                        kTypeRc5x = 0x5001, kTypeRc6 = 0x6000, kTypeNec = 0x900A;
constexpr std::array kTypes = {kTypeLearned, kTypeNotModulated, kTypeRc5, kTypeRc5x, kTypeRc6, kTypeNec};
constexpr std::uint16_t kHighestFrequency = 4;  // as near to kMostCarrier as a word comes
constexpr std::size_t kProntoHead = 4;          // words before the pairs
constexpr std::size_t kMostWords = kProntoHead + kMostLengths;

std::string HexWord(std::uint16_t word) { return HexText(word, 4); }

std::string TakeLearned(std::span<const std::uint16_t> words, RemoteKey& key) {
  const double unit = words[1] * kProntoClock;
  const bool isModulated = words[0] != kTypeNotModulated;
  if (isModulated && words[1] < kHighestFrequency) {
    return "found a frequency of " + HexWord(words[1]) + ", expected " + HexWord(kHighestFrequency) +
           " or more, which is a carrier of up to " + std::to_string(kMostCarrier) + " Hz";
  }
  LengthList lengths;
  for (const std::uint16_t word : words.subspan(kProntoHead)) lengths.Add(std::lround(word * unit));
  if (!lengths.Fault().empty()) return lengths.Fault();
  if (lengths.Size() == 0) return "there are no pairs in it";
  key.Carrier = isModulated ? std::min(static_cast<int>(std::lround(1e6 / unit)), kMostCarrier) : 0;
  const PulseTrain all = lengths.Take();
  const auto onceEnd = all.begin() + 2 * std::ptrdiff_t{words[2]};
  TakeParts({all.begin(), onceEnd}, {onceEnd, all.end()}, key);
  return {};
}

std::string TakeShortForm(std::span<const std::uint16_t> words, RemoteKey& key) {
  const std::span<const std::uint16_t> fields = words.subspan(kProntoHead);
  const std::size_t wanted = words[0] == kTypeRc5x ? 4 : 2;
  if (fields.size() != wanted) {
    return "found " + std::to_string(fields.size()) + " words behind the head, expected " +
           std::to_string(wanted);
  }
  if (words[0] == kTypeRc5) return TakeValues("RC5", {fields[0], -1, fields[1]}, key);
  if (words[0] == kTypeRc5x) return TakeValues("RC5x", {fields[0], fields[1], fields[2]}, key);
  if (words[0] == kTypeRc6) return TakeValues("RC6", {fields[0], -1, fields[1]}, key);
  const unsigned function = fields[1] >> 8U, inverse = fields[1] & 0xFFU;
  if ((function ^ inverse) != 0xFFU) {
    return "found " + HexWord(fields[1]) + ", expected a second byte that is the inverse of the first";
  }
  return TakeValues("NEC1", {fields[0] >> 8, fields[0] & 0xFF, static_cast<long>(function)}, key);
}

/// Pairs of marks and spaces as words, each length at least one unit.
void WritePairs(const PulseTrain& train, int silence, double unit, std::string& text, std::size_t& count) {
  PulseTrain whole = train;
  if (whole.size() % 2 != 0) whole.push_back(silence);
  for (const int length : whole) {
    text +=
        ' ' + HexWord(static_cast<std::uint16_t>(std::clamp<long>(std::lround(length / unit), 1, 0xFFFF)));
  }
  count = whole.size() / 2;
}

/// Whether the frame alone would be taken for one that a short form repeats, as NEC's is.
bool AloneRepeatsShort(const RemoteKey& key) {
  CodedSignal alone = *key.Coded;
  alone.Again.Kind = RepeatKind::Unknown;
  const Family* const family = FamilyOf(alone, key.Carrier);
  return family != nullptr && family->Again.Kind == RepeatKind::Short;
}

}  // namespace

std::string TakePronto(std::span<const std::uint16_t> words, RemoteKey& key) {
  if (words.size() < kProntoHead)
    return "found " + std::to_string(words.size()) + " words, expected four and pairs";
  if (std::find(kTypes.begin(), kTypes.end(), words[0]) == kTypes.end())
    return "the type " + HexWord(words[0]) + " is not known";
  const std::size_t pairs = std::size_t{words[2]} + words[3];
  const std::size_t found = words.size() - kProntoHead;
  if (words[1] == 0) return "found a frequency of 0000, expected another";
  if (found != 2 * pairs) {
    return "found " + std::to_string(found) + " words behind the head, expected the " +
           std::to_string(2 * pairs) + " that it counts";
  }
  switch (words[0]) {
    case kTypeLearned:
    case kTypeNotModulated:
      return TakeLearned(words, key);
    case kTypeRc5:
      key.Protocol = "RC5";
      return TakeShortForm(words, key);
    case kTypeRc5x:
      key.Protocol = "RC5x";
      return TakeShortForm(words, key);
    case kTypeRc6:
      key.Protocol = "RC6";
      return TakeShortForm(words, key);
    default:
      key.Protocol = "NEC1";
      return TakeShortForm(words, key);
  }
}

std::string TakeProntoText(std::string_view text, RemoteKey& key) {
  std::string hex;
  for (const char c : text) {
    const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if (!blank) hex += c;
  }
  if (hex.size() % 4 != 0) return "found a word of less than four hex digits at the end";
  if (hex.size() / 4 > kMostWords)
    return "more than " + std::to_string(kMostWords) + " words, which no sender plays";
  std::vector<std::uint16_t> words;
  for (std::size_t i = 0; i < hex.size(); i += 4) {
    const std::string_view word = std::string_view(hex).substr(i, 4);
    const std::optional<std::int64_t> value = NumberOf(word, 16);
    if (!value || *value < 0) return "found " + Quoted(word) + ", expected four hex digits";
    words.push_back(static_cast<std::uint16_t>(*value));
  }
  return TakePronto(words, key);
}

std::string ProntoText(const RemoteKey& key) {
  const int carrier = CarrierOf(key);
  const double cycles = 1e6 / kProntoClock / (carrier > 0 ? carrier : kUsualCarrier);
  const auto code = static_cast<std::uint16_t>(std::clamp(std::lround(cycles), 1L, 0xFFFFL));
  const double unit = code * kProntoClock;
  PulseTrain once = PressOf(key), repeat;
  const int silence = ClosingSilence(key);
  if (key.Coded && key.Coded->Again.Kind != RepeatKind::Unknown &&
      key.Coded->Again.Kind != RepeatKind::None) {
    once = FrameLengths(*key.Coded);
    const PulseTrain press = PressLengths(*key.Coded, 1);
    repeat.assign(press.begin() + static_cast<std::ptrdiff_t>(once.size()) + 1, press.end());
    if (key.Coded->Again.Kind == RepeatKind::Frame && !AloneRepeatsShort(key)) once.clear();
  }
  if (once.size() + repeat.size() + 2 > kMostLengths) return {};
  std::string pairs;
  std::size_t onceCount = 0, repeatCount = 0;
  if (!once.empty()) WritePairs(once, silence, unit, pairs, onceCount);
  if (!repeat.empty()) WritePairs(repeat, silence, unit, pairs, repeatCount);
  return HexWord(carrier > 0 ? kTypeLearned : kTypeNotModulated) + ' ' + HexWord(code) + ' ' +
         HexWord(static_cast<std::uint16_t>(onceCount)) + ' ' +
         HexWord(static_cast<std::uint16_t>(repeatCount)) + pairs;
}

}  // namespace keplo::trade
