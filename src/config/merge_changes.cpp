#include "config/merge_changes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "config/cfg_text.h"
#include "config/change_value.h"
#include "config/commands.h"
#include "config/parse_number.h"
#include "config/protocols.h"

namespace keplo {

namespace {

using Lines = std::vector<std::string_view>;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::size_t kMostCells = 4'000'000;  // of a table; no real file comes near it

/// The lines of a text, including their line ends.
Lines SplitLines(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

/// For each line of the base its index in another text, by the longest common subsequence; kNone if it is
/// gone. Stretches that are too long to compare are treated as having nothing in common.
std::vector<std::size_t> PlacesIn(const Lines& other, const Lines& base) {
  std::vector<std::size_t> places(base.size(), kNone);
  std::size_t first = 0, baseEnd = base.size(), otherEnd = other.size();
  for (; first < std::min(baseEnd, otherEnd) && base[first] == other[first]; ++first) places[first] = first;
  while (baseEnd > first && otherEnd > first && base[baseEnd - 1] == other[otherEnd - 1]) {
    places[--baseEnd] = --otherEnd;
  }
  const std::size_t rows = baseEnd - first, columns = otherEnd - first;
  if (rows == 0 || columns > kMostCells / (rows + 1)) return places;
  std::vector<std::uint16_t> common((rows + 1) * (columns + 1));  // lines, from row and column on
  const auto cell = [&](std::size_t row, std::size_t column) -> std::uint16_t& {
    return common[row * (columns + 1) + column];
  };
  for (std::size_t row = rows; row-- > 0;) {
    for (std::size_t column = columns; column-- > 0;) {
      cell(row, column) = base[first + row] == other[first + column]
                              ? static_cast<std::uint16_t>(cell(row + 1, column + 1) + 1)
                              : std::max(cell(row + 1, column), cell(row, column + 1));
    }
  }
  for (std::size_t row = 0, column = 0; row < rows && column < columns;) {
    if (base[first + row] == other[first + column]) {
      places[first + row++] = first + column++;
    } else if (cell(row + 1, column) >= cell(row, column + 1)) {
      ++row;
    } else {
      ++column;
    }
  }
  return places;
}

Lines Part(const Lines& lines, std::size_t first, std::size_t end) {
  return {lines.begin() + static_cast<std::ptrdiff_t>(first),
          lines.begin() + static_cast<std::ptrdiff_t>(end)};
}

/// Merges a stretch of lines; none if both texts have changed it, and differently.
std::optional<Lines> MergeStretch(const Lines& base, const Lines& mine, const Lines& theirs) {
  if (mine == base || mine == theirs) return theirs;
  if (theirs == base) return mine;
  return std::nullopt;
}

std::optional<std::string> MergeLines(const Lines& base, const Lines& mine, const Lines& theirs) {
  const std::vector<std::size_t> inMine = PlacesIn(mine, base), inTheirs = PlacesIn(theirs, base);
  std::string merged;
  for (std::size_t b = 0, m = 0, t = 0;;) {
    std::size_t kept = b;  // the next line kept by both
    while (kept < base.size() && (inMine[kept] == kNone || inTheirs[kept] == kNone)) ++kept;
    const bool ends = kept == base.size();
    const std::size_t mineEnd = ends ? mine.size() : inMine[kept];
    const std::size_t theirsEnd = ends ? theirs.size() : inTheirs[kept];
    const std::optional<Lines> stretch =
        MergeStretch(Part(base, b, kept), Part(mine, m, mineEnd), Part(theirs, t, theirsEnd));
    if (!stretch) return std::nullopt;
    for (const std::string_view line : *stretch) merged += line;
    if (ends) return merged;
    merged += base[kept];
    b = kept + 1;
    m = mineEnd + 1;
    t = theirsEnd + 1;
  }
}

/// Whether both programs have added a command with the same code.
bool BothAddSameCode(const Lines& base, const Lines& mine, std::string_view baseText,
                     std::string_view theirs) {
  const std::set<std::string_view> known(base.begin(), base.end());
  return std::any_of(mine.begin(), mine.end(), [&](std::string_view line) {
    const std::size_t comma = line.find(',');
    const bool isNewCommand =
        line.front() == 'G' && comma != std::string_view::npos && known.count(line) == 0;
    const std::string_view code = line.substr(0, comma == std::string_view::npos ? comma : comma + 1);
    return isNewCommand && line.substr(0, kPlaceholderLine.size()) != kPlaceholderLine &&
           FindNoCase(code, theirs, 1) != kNowhere && FindNoCase(code, baseText, 1) == kNowhere;
  });
}

int SelectedProtocol(std::string_view text) {
  const int place = FindNoCase("PROTOCOL=", text, FindNoCase("[General]", text, 1));
  return WithoutFraction<int>(GetLineAt(text, place));
}

std::string WithSelected(const std::string& text, int index) {
  if (SelectedProtocol(text) == index) return text;
  return WithGeneralValue(text, "PROTOCOL", std::to_string(index)).value_or(text);
}

/// The index in one text of the protocol that another text has selected.
int IndexOfSelected(std::string_view selecting, std::string_view text) {
  const std::vector<std::string> from = ListProtocols(selecting), in = ListProtocols(text);
  const int index = SelectedProtocol(selecting), end = static_cast<int>(in.size());
  if (index < 0 || index >= static_cast<int>(from.size())) return end;  // the entry without a section
  const auto place = std::find(in.begin(), in.end(), from[static_cast<std::size_t>(index)]);
  return place == in.end() ? 0 : static_cast<int>(place - in.begin());
}

}  // namespace

std::optional<std::string> MergeChanges(const std::string& base, const std::string& mine,
                                        const std::string& theirs) {
  if (!IsWhole(base) || !IsWhole(mine) || !IsWhole(theirs)) return std::nullopt;
  if (mine == base || mine == theirs) return theirs;
  if (theirs == base) return mine;
  const int selected = SelectedProtocol(mine);
  const bool selects = selected != SelectedProtocol(base);
  const std::string selectedBase = selects ? WithSelected(base, selected) : base;
  const std::string selectedTheirs = selects ? WithSelected(theirs, selected) : theirs;
  const Lines baseLines = SplitLines(selectedBase), mineLines = SplitLines(mine);
  if (BothAddSameCode(baseLines, mineLines, selectedBase, selectedTheirs)) return std::nullopt;
  std::optional<std::string> merged = MergeLines(baseLines, mineLines, SplitLines(selectedTheirs));
  if (!merged || !selects) return merged;
  return WithSelected(*merged, IndexOfSelected(mine, *merged));
}

}  // namespace keplo
