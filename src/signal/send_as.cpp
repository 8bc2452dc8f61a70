#include "signal/send_as.h"

#include <cstdint>

#include "signal/raw/raw_digits.h"
#include "signal/rc6.h"

namespace keplo {

namespace {

constexpr char kNoteMark = ':';  // between the way and the checksum
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

bool CanBeSentIn(std::string_view way, std::string_view code) {
  return way == kSendAsRc6 ? IsRc6Code(code) : IsSentInTurns(code, way);
}

}  // namespace

std::string_view WayOf(std::string_view code, std::string_view sendAs) {
  std::string_view way;
  while (!sendAs.empty()) {
    const std::string_view word = sendAs.substr(0, sendAs.find(' '));
    sendAs.remove_prefix(word.size() < sendAs.size() ? word.size() + 1 : word.size());
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
