#include "signal/send_as.h"

#include <charconv>
#include <cstdint>
#include <system_error>

#include "signal/raw/raw_digits.h"
#include "signal/rc6.h"

namespace keplo {

namespace {

constexpr std::string_view kEvery = "PERIOD";  // before the slots
constexpr char kFromSecond = '<';              // after the digits
constexpr char kNoteMark = ':';                // between the way and the checksum
constexpr std::string_view kSigns = "!$%()*+./;<>?@^~";
constexpr int kBitsPerSign = 4;
constexpr int kSignsOfNote = 8;

std::string Checksum(std::string_view code) {
  std::uint64_t rest = TextHash(code);
  std::string signs;
  for (int i = 0; i < kSignsOfNote; ++i) {
    signs += kSigns[rest % kSigns.size()];
    rest >>= kBitsPerSign;
  }
  return signs;
}

/// Cuts the first word off.
std::string_view NextWord(std::string_view& value) {
  const std::string_view word = value.substr(0, value.find(' '));
  value.remove_prefix(word.size() < value.size() ? word.size() + 1 : word.size());
  return word;
}

bool CanBeSentIn(std::string_view way, std::string_view code) {
  return way == kSendAsRc6 ? IsRc6Code(code) : IsSentInTurns(code, way);
}

}  // namespace

std::string SendEvery(int slots) { return std::string(kEvery) + std::to_string(slots); }

int PeriodOf(std::string_view sendAs) {
  while (!sendAs.empty()) {
    std::string_view word = NextWord(sendAs);
    if (!word.starts_with(kEvery)) continue;
    word.remove_prefix(kEvery.size());
    std::int16_t slots = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), slots);
    if (error == std::errc() && end == word.data() + word.size() && slots > 0) return slots;
  }
  return 0;
}

std::string WithoutWays(std::string_view sendAs) {
  const int period = PeriodOf(sendAs);
  return period > 0 ? SendEvery(period) : std::string();
}

std::string SendInTurns(std::size_t digits, bool fromSecond) {
  return std::to_string(digits) + (fromSecond ? std::string(1, kFromSecond) : "");
}

bool IsSentInTurns(std::string_view code, std::string_view way) {
  return !code.empty() && code.size() % 2 == 0 && WayOfAll(way) == SendInTurns(code.size() / 2);
}

bool IsSentFromSecond(std::string_view way) { return way.ends_with(kFromSecond); }

std::string_view WayOfAll(std::string_view way) {
  return way.substr(0, way.size() - (IsSentFromSecond(way) ? 1 : 0));
}

std::string_view WayOf(std::string_view code, std::string_view sendAs) {
  std::string_view way;
  while (!sendAs.empty()) {
    const std::string_view word = NextWord(sendAs);
    if (IsNoteOn(code, word)) return word.substr(0, word.find(kNoteMark));
    if (CanBeSentIn(word, code)) way = word;
  }
  return way;
}

std::string NoteOfWay(std::string_view code, std::string_view way) {
  return std::string(way) + kNoteMark + Checksum(code);
}

bool IsNoteOfWay(std::string_view word) { return word.find(kNoteMark) != std::string_view::npos; }

bool IsNoteOn(std::string_view code, std::string_view word) {
  const std::size_t mark = word.find(kNoteMark);
  return mark != std::string_view::npos && word.substr(mark + 1) == Checksum(code);
}

}  // namespace keplo
