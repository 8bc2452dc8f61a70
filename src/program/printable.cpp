#include "program/printable.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace keplo {

namespace {

struct Character {
  char32_t Code = 0;
  std::size_t Length = 1;  // bytes
};

/// The first UTF-8 character of a text; an invalid byte counts as a character.
Character FirstOf(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char head = byte(0);
  const std::size_t length = head >= 0xF0 && head < 0xF8 ? 4 : head >= 0xE0 ? 3 : head >= 0xC0 ? 2 : 1;
  if (length == 1 || head >= 0xF8 || text.size() < length) return {head, 1};
  char32_t code = head & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return {head, 1};
    code = code << 6U | (byte(i) & 0x3FU);
  }
  return {code, length};
}

bool IsBetween(char32_t code, char32_t first, char32_t last) { return code >= first && code <= last; }

bool IsControl(char32_t code) {
  const bool control = code < 0x20 || IsBetween(code, 0x7F, 0x9F);
  const bool lineEnd = IsBetween(code, 0x2028, 0x2029);
  const bool direction =
      IsBetween(code, 0x200E, 0x200F) || IsBetween(code, 0x202A, 0x202E) || IsBetween(code, 0x2066, 0x2069);
  return control || lineEnd || direction;
}

/// Replaces all control characters of a text.
template <typename Replacement>
std::string Replaced(std::string_view text, Replacement replacement) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    const Character next = FirstOf(text);
    if (IsControl(next.Code)) {
      line += replacement(next.Code);
    } else {
      line += text.substr(0, next.Length);
    }
    text.remove_prefix(next.Length);
  }
  return line;
}

}  // namespace

std::string Printable(std::string_view text) {
  return Replaced(text, [](char32_t) { return ' '; });
}

std::string PrintableJson(std::string_view json) {
  return Replaced(json, [](char32_t code) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string escape = "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) escape += kDigits[code >> shift & 0xFU];
    return escape;
  });
}

std::vector<std::string> PrintableLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line = Printable(text.substr(0, end));
    line.erase(line.find_last_not_of(' ') + 1);
    line.erase(0, line.find_first_not_of(' '));
    lines.push_back(std::move(line));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace keplo
