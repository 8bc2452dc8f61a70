#include "formats/pulse_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

namespace keplo {

namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";
constexpr std::size_t kLongestQuote = 40;  // characters of a wrong word that an error text repeats

std::string_view TakeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

/// Splits a line into what stands before its comment and the text of the comment.
std::pair<std::string_view, std::string_view> SplitComment(std::string_view line) {
  const std::size_t hash = line.find('#');
  const std::size_t slashes = line.find("//");
  if (hash == std::string_view::npos && slashes == std::string_view::npos) return {line, {}};
  return hash < slashes ? std::pair{line.substr(0, hash), line.substr(hash + 1)}
                        : std::pair{line.substr(0, slashes), line.substr(slashes + 2)};
}

std::optional<int> ReadLength(std::string_view word) {
  int length = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), length);
  if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  if (length <= 0 || length > kLongestPulse) return std::nullopt;
  return length;
}

class PressCollector {
 public:
  void AddMark(int length) {
    if (pressEnds_) EndPress();
    Add(length, 0);
  }

  void AddSpace(int length) {
    if (train_.empty()) return;
    Add(length, 1);
    pressEnds_ = train_.back() >= kPressSilence;
  }

  void EndPress() {
    if (!train_.empty()) presses_.push_back(std::exchange(train_, {}));
    pressEnds_ = false;
  }

  std::vector<PulseTrain> TakePresses() {
    EndPress();
    return std::move(presses_);
  }

 private:
  void Add(int length, std::size_t parity) {
    if (train_.size() % 2 == parity) {
      train_.push_back(length);
    } else {
      train_.back() = std::min(train_.back() + length, kLongestPulse);
    }
  }

  std::vector<PulseTrain> presses_;
  PulseTrain train_;
  bool pressEnds_ = false;
};

class Parser {
 public:
  explicit Parser(std::string_view name) : name_(name) {}

  std::vector<PulseTrain> Parse(std::string_view text) {
    while (!text.empty()) {
      ++line_;
      ParseLine(TakeLine(text));
    }
    std::vector<PulseTrain> presses = collector_.TakePresses();
    if (presses.empty()) {
      throw FormatError(
          std::string(name_) +
          ": there is no key press in it; expected lines such as \"pulse 560\" and \"space 560\"");
    }
    return presses;
  }

 private:
  void ParseLine(std::string_view line) {
    auto [rest, comment] = SplitComment(line);
    const std::string_view word = TakeWord(rest);
    if (word.empty()) return;
    if (word.front() == '+' || word.front() == '-') {
      ParseSignedLine(word, rest, comment);
      return;
    }
    static constexpr std::array<std::string_view, 4> kWords = {"pulse", "space", "timeout", "carrier"};
    if (std::find(kWords.begin(), kWords.end(), word) == kWords.end()) {
      Refuse(word, R"("pulse", "space", "timeout" or a signed length such as +560)");
    }
    const int number = NumberOf(TakeWord(rest));
    if (const std::string_view more = TakeWord(rest); !more.empty()) Refuse(more, "the end of the line");
    if (word == "pulse") collector_.AddMark(number);
    if (word == "space" || word == "timeout") collector_.AddSpace(number);
    if (word == "timeout") collector_.EndPress();
  }

  void ParseSignedLine(std::string_view word, std::string_view rest, std::string_view comment) {
    collector_.EndPress();
    for (; !word.empty(); word = TakeWord(rest)) {
      if (word.front() != '+' && word.front() != '-') Refuse(word, "a signed length such as +560 or -560");
      const int length = NumberOf(word.substr(1));
      if (word.front() == '+') {
        collector_.AddMark(length);
      } else {
        collector_.AddSpace(length);
      }
    }
    if (TakeWord(comment) == "timeout") {
      if (const std::optional<int> silence = ReadLength(TakeWord(comment))) collector_.AddSpace(*silence);
    }
    collector_.EndPress();
  }

  int NumberOf(std::string_view word) const {
    const std::optional<int> number = ReadLength(word);
    if (!number) Refuse(word, "a length from 1 to " + std::to_string(kLongestPulse) + " microseconds");
    return *number;
  }

  [[noreturn]] void Refuse(std::string_view found, std::string_view expected) const {
    std::string quoted =
        found.empty() ? "the end of the line" : '"' + std::string(found.substr(0, kLongestQuote)) + '"';
    // An error's text ends at such a byte.
    std::replace(quoted.begin(), quoted.end(), '\0', '?');
    throw FormatError(std::string(name_) + ", line " + std::to_string(line_) + ": found " + quoted +
                      ", expected " + std::string(expected));
  }

  std::string_view name_;
  int line_ = 0;
  PressCollector collector_;
};

}  // namespace

std::vector<PulseTrain> ParsePulseText(std::string_view text, std::string_view name) {
  return Parser(name).Parse(text);
}

std::string Mode2Text(const PulseTrain& train) {
  std::string text;
  for (std::size_t i = 0; i < train.size(); ++i) {
    text += (i % 2 == 0 ? "pulse " : "space ") + std::to_string(train[i]) + '\n';
  }
  return text;
}

std::string OneLineText(const PulseTrain& train) {
  std::string text;
  for (std::size_t i = 0; i < train.size(); ++i) {
    text += (i == 0 ? "+" : i % 2 == 0 ? " +" : " -") + std::to_string(train[i]);
  }
  return text + '\n';
}

}  // namespace keplo
