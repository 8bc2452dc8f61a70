#include "config/raw_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <utility>

#include "signal/raw/raw_digits.h"

namespace keplo {

namespace {

constexpr std::string_view kEntryHead = "# G";
constexpr std::string_view kEndOfForm = "timeout 200000\n";  // longer than any silence within a press
constexpr std::string_view kMarkLine = "pulse ", kSpaceLine = "space ";

/// Removes the first line from a text and returns it without its LF.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

std::string Checksum(std::string_view lines) {
  std::array<char, 17> hex{};
  std::snprintf(hex.data(), hex.size(), "%016llx", static_cast<unsigned long long>(TextHash(lines)));
  return hex.data();
}

std::optional<int> LengthIn(std::string_view line, std::string_view kind) {
  if (line.substr(0, kind.size()) != kind) return std::nullopt;
  line.remove_prefix(kind.size());
  int length = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), length);
  if (error != std::errc() || end != line.data() + line.size() || length <= 0) return std::nullopt;
  return length;
}

/// @return none if a line is not as MakeRawEntry writes it
std::optional<std::vector<RawLengths>> FormsIn(std::string_view lines) {
  std::vector<RawLengths> forms(1);
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
    const bool afterMark = forms.back().size() % 2 == 1;
    if (afterMark && line == kEndOfForm.substr(0, kEndOfForm.size() - 1)) {
      forms.emplace_back();
      continue;
    }
    const std::optional<int> length = LengthIn(line, afterMark ? kSpaceLine : kMarkLine);
    if (!length) return std::nullopt;
    forms.back().push_back(*length);
  }
  if (!forms.back().empty() || forms.size() < 2) return std::nullopt;
  forms.pop_back();
  return forms;
}

/// Where the next entry begins; the end of the text if there is none.
std::size_t NextEntry(std::string_view text) {
  if (text.substr(0, kEntryHead.size()) == kEntryHead) return 0;
  const std::size_t lineEnd = text.find("\n# G");
  return lineEnd == std::string_view::npos ? text.size() : lineEnd + 1;
}

}  // namespace

RawEntries ReadRawText(std::string_view text) {
  // Otherwise the next entry that is written would continue the last line of this text.
  if (!text.empty() && text.back() != '\n') return ReadRawText(std::string(text) + '\n');
  RawEntries entries;
  text.remove_prefix(NextEntry(text));
  while (!text.empty()) {
    std::string_view rest = text;
    std::string_view head = TakeLine(rest).substr(kEntryHead.size());
    const std::size_t end = text.size() - rest.size() + NextEntry(rest);
    const std::string_view lines = rest.substr(0, NextEntry(rest));
    const std::size_t blank = std::min(head.find(' '), head.size());
    const std::string_view digits = head.substr(0, blank);
    RawEntry entry{{std::string(digits), {}}, std::string(text.substr(0, end))};
    head.remove_prefix(std::min(blank + 1, head.size()));
    if (head == Checksum(lines)) entry.Signal.Forms = FormsIn(lines).value_or(std::vector<RawLengths>());
    entries.insert_or_assign(std::string(digits), std::move(entry));
    text.remove_prefix(end);
  }
  return entries;
}

RawEntry MakeRawEntry(const RawSignal& signal) {
  std::string lines;
  for (const RawLengths& form : signal.Forms) {
    for (std::size_t i = 0; i < form.size(); ++i) {
      lines.append(i % 2 == 0 ? kMarkLine : kSpaceLine).append(std::to_string(form[i])).append("\n");
    }
    lines += kEndOfForm;
  }
  return {signal, std::string(kEntryHead) + signal.Digits + " " + Checksum(lines) + "\n" + lines};
}

std::string WriteRawText(std::string_view protocol, const RawEntries& entries) {
  std::string text = "# The lengths of the raw commands of [" + std::string(protocol) +
                     "], microseconds. A command whose lines are changed here has to be learned again.\n";
  for (const auto& [digits, entry] : entries) text += entry.Text;
  return text;
}

}  // namespace keplo
