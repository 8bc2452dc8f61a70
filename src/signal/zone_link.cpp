#include "signal/zone_link.h"

#include <bit>

#include "signal/win32_ser.h"

namespace keplo {

namespace {

constexpr int kAttempts = 4;
constexpr char kZoneQuery = 'P';
constexpr int kAnswerOffset = 64;  // the answer is the command without its highest bit

/// Characters pass only in the line's second mode; whichever way an exchange ends, capture needs the first.
class CharacterMode {
 public:
  explicit CharacterMode(Win32Ser& line) : line_(line) { line_.SetMode(2); }
  ~CharacterMode() { line_.SetMode(1); }
  CharacterMode(const CharacterMode&) = delete;
  CharacterMode& operator=(const CharacterMode&) = delete;

 private:
  Win32Ser& line_;
};

bool ReadAnswer(Win32Ser& line, char& answer) { return static_cast<std::int16_t>(line.ReadChr(answer)) != 0; }

}  // namespace

std::int16_t QueryZone(Win32Ser& line) {
  const CharacterMode mode(line);
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    line.SendChr(kZoneQuery);
    char answer = '0';
    if (!ReadAnswer(line, answer)) continue;
    const std::int16_t zone = line.CheckZone(answer);
    if (zone > 0) return zone;
  }
  return kNoZone;
}

bool SendZone(Win32Ser& line, std::int16_t zone) {
  const CharacterMode mode(line);
  const std::int16_t command = ExpandGenericBits(zone, "11");
  if (command == 0) return false;
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    line.SendChr(static_cast<char>(command));
    char answer = '\0';
    if (ReadAnswer(line, answer) && answer == command - kAnswerOffset) return true;
  }
  return false;
}

std::int16_t ExpandGenericBits(std::int16_t zone, std::string_view header) {
  if (zone < 1 || zone > 8 || header.size() != 2) return 0;
  const auto index = static_cast<unsigned>(zone - 1);
  const auto digit = [&](std::size_t place) { return header[place] == '1' ? 1U : 0U; };
  const auto ones = static_cast<unsigned>(std::popcount(index));
  return static_cast<std::int16_t>(digit(0) << 6U | ones << 4U | digit(1) << 3U | index);
}

}  // namespace keplo
