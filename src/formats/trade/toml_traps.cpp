#include "formats/trade/toml_traps.h"

#include <algorithm>

namespace keplo::trade {

namespace {

constexpr int kMostParts = 64;  // of a dotted key
constexpr std::string_view kBlank = " \t\r\n";
constexpr std::string_view kStray = "no TOML: a letter outside ASCII must stand in quotes";
constexpr std::string_view kDeep = "found a key of more than 64 parts, expected fewer";

bool BeyondAscii(char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; }

/// The quotes that begin the text: one, or three for a string of many lines.
std::string_view OpeningQuotes(std::string_view text) {
  return text.substr(0, text.starts_with(R"(""")") || text.starts_with("'''") ? 3 : 1);
}

/// Walks over a text with the quotes or the comment in mind that a place lies in.
class TrapFinder {
 public:
  explicit TrapFinder(std::string_view text) : text_(text) {}

  std::optional<TomlTrap> Find() {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    at_ = text_.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    for (; at_ < text_.size(); ++at_) {
      const std::string_view why = within_.empty() ? StepOutside() : StepWithin();
      if (!why.empty()) {
        const auto place = text_.begin() + static_cast<std::ptrdiff_t>(at_);
        return TomlTrap{1 + static_cast<int>(std::count(text_.begin(), place, '\n')), why};
      }
    }
    return std::nullopt;
  }

 private:
  std::string_view StepOutside() {
    const char c = text_[at_];
    if (BeyondAscii(c)) return kStray;
    if (c == '.' && ++parts_ > kMostParts) return kDeep;
    if (std::string_view("\n=,[{").find(c) != std::string_view::npos) parts_ = 0;
    if (c == '#') within_ = text_.substr(at_, 1);
    if (c == '"' || c == '\'') {
      within_ = OpeningQuotes(text_.substr(at_));
      at_ += within_.size() - 1;
    }
    return {};
  }

  std::string_view StepWithin() {
    const std::string_view rest = text_.substr(at_);
    if (rest[0] == '\n' && within_.size() == 1) {
      within_ = {};
      parts_ = 0;
    } else if (rest[0] == '\\' && within_.starts_with('"')) {
      const std::size_t next = within_.size() == 3 ? rest.find_first_not_of(kBlank, 1) : 1;
      if (next < rest.size() && next > 1 && BeyondAscii(rest[next])) return kStray;
      ++at_;
    } else if (within_ != "#" && rest.starts_with(within_)) {
      // Three quotes close a string of many lines, of up to five that follow one another.
      const std::size_t most = within_.size() == 3 ? 5 : 1;
      at_ += std::min(rest.find_first_not_of(within_[0]), most) - 1;
      within_ = {};
    }
    return {};
  }

  std::string_view text_, within_;  // the quotes, or the # of a comment; empty outside
  std::size_t at_ = 0;
  int parts_ = 0;
};

}  // namespace

std::optional<TomlTrap> FindTomlTrap(std::string_view text) { return TrapFinder(text).Find(); }

}  // namespace keplo::trade
