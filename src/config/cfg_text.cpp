#include "config/cfg_text.h"

#include <algorithm>

namespace keplo {

namespace {

constexpr char kCr = '\r';

std::size_t OffsetOf(int position) { return static_cast<std::size_t>(position - 1); }

int PositionOf(std::size_t offset) { return static_cast<int>(offset) + 1; }

bool IsInside(std::string_view text, int position) {
  return position >= 1 && OffsetOf(position) < text.size();
}

bool MatchesAt(std::string_view needle, std::string_view text, std::size_t offset) {
  if (needle.empty()) return true;
  // Compares the last character first; otherwise a needle that begins with many [ would be slow to find among
  // many [.
  return offset < text.size() && needle.size() <= text.size() - offset &&
         LowerCase(needle.back()) == LowerCase(text[offset + needle.size() - 1]) &&
         EqualNoCase(needle, text.substr(offset, needle.size()));
}

/// Finds the occurrences of a character in either case, in ascending order.
class NoCaseFinder {
 public:
  NoCaseFinder(std::string_view text, char character)
      : text_(text), lower_(LowerCase(character)), upper_(lower_) {
    if (lower_ >= 'a' && lower_ <= 'z') upper_ = static_cast<char>(lower_ - ('a' - 'A'));
  }

  std::size_t Next(std::size_t from) {
    if (!searched_ || nextLower_ < from) nextLower_ = text_.find(lower_, from);
    if (upper_ != lower_ && (!searched_ || nextUpper_ < from)) nextUpper_ = text_.find(upper_, from);
    searched_ = true;
    return std::min(nextLower_, nextUpper_);
  }

 private:
  std::string_view text_;
  char lower_, upper_;
  bool searched_ = false;
  std::size_t nextLower_ = std::string_view::npos, nextUpper_ = std::string_view::npos;
};

/// Offset of the first match that begins at an offset in [first, end).
std::size_t FindMatch(std::string_view needle, std::string_view text, std::size_t first, std::size_t end) {
  // Codes make digits so common in a text that any other character of the needle is found far less often.
  const std::size_t rare = needle.find_first_not_of("0123456789");
  const std::size_t anchor = rare == std::string_view::npos ? 0 : rare;
  NoCaseFinder places(text.substr(0, end + anchor), needle[anchor]);
  for (std::size_t at = places.Next(first + anchor); at != std::string_view::npos; at = places.Next(at + 1)) {
    if (MatchesAt(needle, text, at - anchor)) return at - anchor;
  }
  return std::string_view::npos;
}

}  // namespace

bool EqualNoCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

int FindNoCase(std::string_view needle, std::string_view text, int start) {
  if (start < 1) return kNowhere;
  const int length = static_cast<int>(needle.size());
  if (MatchesAt(needle, text, OffsetOf(start))) return start + length;
  if (needle.size() > text.size()) return kNowhere;
  const std::size_t first = OffsetOf(start) + 1;
  const std::size_t end = std::min(text.size() - 1, text.size() - needle.size() + 1);
  if (first >= end) return kNowhere;
  const std::size_t match = FindMatch(needle, text, first, end);
  return match == std::string_view::npos ? kNowhere : PositionOf(match) + length;
}

std::string_view GetLineAt(std::string_view text, int position) {
  if (!IsInside(text, position)) return {};
  const std::size_t first = OffsetOf(position);
  const std::size_t end = text.find(kCr, first + 1);
  return Trimmed(text.substr(first, end == std::string_view::npos ? end : end - first));
}

std::string InsertText(std::string_view text, std::string_view piece, int position) {
  const std::size_t offset = position < 1 ? 0 : std::min(OffsetOf(position), text.size());
  std::string joined;
  joined.reserve(text.size() + piece.size());
  return joined.append(text.substr(0, offset)).append(piece).append(text.substr(offset));
}

std::string RemoveText(std::string_view text, int first, int last) {
  const std::size_t begin = first < 1 ? 0 : std::min(OffsetOf(first), text.size());
  const std::size_t end = last < 1 ? 0 : std::min(static_cast<std::size_t>(last), text.size());
  std::string rest(text.substr(0, begin));
  return rest.append(text.substr(std::max(begin, end)));
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

const std::string& TrimBoth(std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  text.erase(0, first);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

int LineNumber(std::string_view text, int position) {
  const std::string_view before = text.substr(0, static_cast<std::size_t>(std::max(position - 1, 0)));
  return 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
}

int SeekForward(std::string_view text, int position, char character) {
  if (!IsInside(text, position)) return kNowhere;
  const std::size_t offset = text.find(character, OffsetOf(position));
  return offset == std::string_view::npos ? kNowhere : PositionOf(offset);
}

int SeekBack(std::string_view text, int position, char character) {
  if (position < 1) return kNowhere;
  const std::size_t offset = text.rfind(character, OffsetOf(position));
  return offset == std::string_view::npos ? kNowhere : PositionOf(offset);
}

}  // namespace keplo
