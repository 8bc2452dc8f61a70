#include "formats/trade/tasmota_raw.h"

#include <algorithm>
#include <vector>

namespace keplo::trade {

namespace {

constexpr std::size_t kTableLetters = 26;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

void ReadCompact(std::string_view text, LengthList& lengths) {
  std::vector<std::int64_t> table;
  for (std::size_t i = 0; i < text.size() && lengths.Fault().empty();) {
    const char c = text[i++];
    const bool mark = lengths.Size() % 2 == 0;
    const bool lower = c >= 'a' && c <= 'z', upper = c >= 'A' && c <= 'Z';
    std::int64_t length = 0;
    if (lower || upper) {
      const auto place = static_cast<std::size_t>(c - (lower ? 'a' : 'A'));
      if (place >= table.size())
        return lengths.Refuse("found the letter " + Quoted({&c, 1}) + " ahead of its length");
      length = table[place];
    } else if (c == '+' || c == '-') {
      const std::size_t first = i;
      while (i < text.size() && IsDigit(text[i])) ++i;
      const std::optional<std::int64_t> number = NumberOf(text.substr(first, i - first));
      if (!number)
        return lengths.Refuse("found " + Quoted(text.substr(first - 1, 1)) + " without a length behind it");
      length = *number;
      const bool known = std::find(table.begin(), table.end(), length) != table.end();
      if (!known && table.size() < kTableLetters) table.push_back(length);
    } else {
      return lengths.Refuse("found " + Quoted({&c, 1}) + ", expected a letter or a signed length");
    }
    if (mark != (upper || c == '+'))
      return lengths.Refuse("found " + Quoted({&c, 1}) + ", expected a mark and a space in turn");
    lengths.Add(length);
  }
}

std::string CompactText(const PulseTrain& press) {
  constexpr int kStep = 5;  // microseconds
  std::vector<int> table;
  std::string text;
  for (std::size_t i = 0; i < press.size(); ++i) {
    const int length = std::max((press[i] + kStep / 2) / kStep * kStep, kStep);
    const auto known = std::find(table.begin(), table.end(), length);
    if (known != table.end()) {
      text += static_cast<char>((i % 2 == 0 ? 'A' : 'a') + (known - table.begin()));
      continue;
    }
    if (table.size() < kTableLetters) table.push_back(length);
    text += (i % 2 == 0 ? '+' : '-') + std::to_string(length);
  }
  return text;
}

}  // namespace keplo::trade
