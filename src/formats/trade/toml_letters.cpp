#include "formats/trade/toml_letters.h"

#include <algorithm>

namespace keplo::trade {

namespace {

bool BeyondAscii(char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; }

/// The quotes that begin the text: one, or three for a string of many lines.
std::string_view OpeningQuotes(std::string_view text) {
  return text.substr(0, text.starts_with(R"(""")") || text.starts_with("'''") ? 3 : 1);
}

}  // namespace

int LineOfStrayLetter(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF", kBlank = " \t\r\n";
  std::string_view within;  // the quotes, or # of the comment, that the place is after
  for (std::size_t at = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0; at < text.size();
       ++at) {
    const std::string_view rest = text.substr(at);
    bool stray = within.empty() && BeyondAscii(rest[0]);
    if (rest[0] == '\n' && within.size() == 1) {
      within = {};
    } else if (within.empty() && (rest[0] == '"' || rest[0] == '\'')) {
      within = OpeningQuotes(rest);
      at += within.size() - 1;
    } else if (within.empty() && rest[0] == '#') {
      within = rest.substr(0, 1);
    } else if (rest[0] == '\\' && within.starts_with('"')) {
      const std::size_t next = within.size() == 3 ? rest.find_first_not_of(kBlank, 1) : 1;
      stray = next < rest.size() && next > 1 && BeyondAscii(rest[next]);
      ++at;
    } else if (!within.empty() && within != "#" && rest.starts_with(within)) {
      // Three quotes close a string of many lines, of up to five that follow one another.
      const std::size_t most = within.size() == 3 ? 5 : 1;
      at += std::min(rest.find_first_not_of(within[0]), most) - 1;
      within = {};
    }
    if (stray)
      return static_cast<int>(
                 std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n')) +
             1;
  }
  return 0;
}

}  // namespace keplo::trade
