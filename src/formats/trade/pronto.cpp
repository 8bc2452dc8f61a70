#include <algorithm>
#include <array>

#include "formats/trade/pronto_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kDigitsPerWord = 4;
constexpr std::size_t kHeadDigits = 16;  // type, frequency and two counts

bool IsHexDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
}

/// Whether all words are hex in fours, with blanks between them or without.
bool IsHexLine(std::string_view line) {
  std::size_t words = 0;
  for (std::string_view word = TakeWord(line); !word.empty(); word = TakeWord(line), ++words) {
    if (!IsHexDigits(word) || word.size() % kDigitsPerWord != 0) return false;
  }
  return words > 0;
}

std::string Joined(std::string_view line) {
  std::string digits;
  for (std::string_view word = TakeWord(line); !word.empty(); word = TakeWord(line)) digits += word;
  return digits;
}

bool IsType(std::string_view word) {
  constexpr std::array<std::string_view, 6> kTypes = {"0000", "0100", "5000", "5001", "6000", "900A"};
  return std::any_of(kTypes.begin(), kTypes.end(),
                     [&](std::string_view type) { return SameNoCase(word, type); });
}

bool BeginsCode(std::string_view digits) {
  return digits.size() >= 2 * kDigitsPerWord && IsType(digits.substr(0, kDigitsPerWord));
}

/// The digits of all words that a code counts; none without its head.
std::optional<std::size_t> DigitsCounted(std::string_view digits) {
  if (digits.size() < kHeadDigits) return std::nullopt;
  const auto count = [&](std::size_t word) {
    return *NumberOf(digits.substr(word * kDigitsPerWord, kDigitsPerWord), 16);
  };
  return kHeadDigits + static_cast<std::size_t>(count(2) + count(3)) * 2 * kDigitsPerWord;
}

/// Whether a code has the words that it counts.
bool IsWhole(std::string_view digits) {
  const std::optional<std::size_t> counted = DigitsCounted(digits);
  return counted && *counted <= digits.size();
}

/// The place of two hex words that stand right before a place, which are the type and the frequency of a
/// code of a foreign type, or the place itself.
std::size_t WithForeignType(std::string_view line, std::size_t at) {
  const std::string_view ahead = Trimmed(line.substr(0, at));
  constexpr std::size_t kTwoWords = 2 * kDigitsPerWord + 1;
  if (ahead.size() < kTwoWords) return at;
  const std::size_t first = ahead.size() - kTwoWords;
  const bool isAlone = first == 0 || !std::isxdigit(static_cast<unsigned char>(ahead[first - 1]));
  std::string_view words = ahead.substr(first);
  const bool isHex = IsHexDigits(TakeWord(words)) && IsHexDigits(Trimmed(words));
  return isAlone && isHex ? static_cast<std::size_t>(ahead.data() + first - line.data()) : at;
}

/// Where the words begin that are a code to the end of the line, after a name or alone; npos without any.
std::size_t FindCode(std::string_view line) {
  constexpr std::string_view kBeforeCode = " \t:=>,;|\"";
  for (std::size_t at = 0; at != std::string_view::npos;) {
    const std::string_view rest = line.substr(at);
    if (IsType(rest.substr(0, kDigitsPerWord)) && IsHexLine(rest) && BeginsCode(Joined(rest)))
      return IsWhole(Joined(rest)) ? at : WithForeignType(line, at);
    at = line.find_first_of(kBeforeCode, at);
    if (at != std::string_view::npos) at = line.find_first_not_of(kBeforeCode, at);
  }
  return std::string_view::npos;
}

/// A row of a table, or of a program's text, without what closes it behind the code.
std::string_view WithoutClosing(std::string_view line) {
  const std::string_view code = line.substr(0, line.find_last_not_of("\",; \t") + 1);
  return code.size() < line.size() && FindCode(code) != std::string_view::npos ? code : line;
}

/// Whether a line of hex words is a name, such as FACE, and a code.
bool HasHexName(std::string_view line, std::size_t code) {
  if (code == 0 || code == std::string_view::npos) return false;
  const auto isAll = [](const std::string& digits) { return DigitsCounted(digits) == digits.size(); };
  return isAll(Joined(line.substr(code))) && !isAll(Joined(line));
}

/// A name without what parts it from its code.
std::string_view NameIn(std::string_view text) {
  const auto isParted = [](std::string_view name) {
    return !name.empty() && std::string_view(":=,;|").find(name.back()) != std::string_view::npos;
  };
  text = Trimmed(text);
  // Of an odd number of quotes the last one opens the code.
  if (text.ends_with('"') && std::count(text.begin(), text.end(), '"') % 2 != 0) {
    const std::string_view ahead = Trimmed(text.substr(0, text.size() - 1));
    if (isParted(ahead)) text = ahead;
  }
  if (isParted(text)) text = Trimmed(text.substr(0, text.size() - 1));
  const bool wrapped = text.size() > 2 && ((text.front() == '<' && text.back() == '>') ||
                                           (text.front() == '"' && text.back() == '"'));
  return wrapped ? Trimmed(text.substr(1, text.size() - 2)) : text;
}

/// Codes as people paste them: a name before each in its line or above it, or none.
class ProntoReader {
 public:
  ProntoReader(const std::string& path, RemoteFile& file) : reading_(path, file) {}

  void Read(std::string_view text) {
    Lines lines(text);
    std::string_view line;
    while (lines.Next(line)) ReadLine(WithoutClosing(Trimmed(line)), lines.Number());
    EndCode();
    if (name_) reading_.Complain(nameLine_, "found a name without a code", *name_);
  }

 private:
  void ReadLine(std::string_view line, int number) {
    if (line.empty()) return;
    const bool hex = IsHexLine(line);
    // Behind a whole code a word such as FACE is the next one's name.
    const bool goesOn = !digits_.empty() && (line.size() > kDigitsPerWord || !IsWhole(digits_));
    const std::size_t code = FindCode(line);
    const bool foreign = line.find_first_of(" \t") < std::min(code, line.size()) - 1;
    const bool named = (digits_.empty() || IsWhole(digits_)) && HasHexName(line, code);
    if (hex && !named && (goesOn || code == 0 || foreign)) return TakeHex(line, number);
    if (code != std::string_view::npos) {
      TakeName(NameIn(line.substr(0, code)), number);
      return TakeHex(line.substr(code), number);
    }
    // A name may have a colon itself, so the last one counts.
    const std::size_t colon = line.rfind(':');
    const std::string_view rest = Trimmed(line.substr(colon + 1));  // npos + 1 is 0
    if (!IsType(rest.substr(0, kDigitsPerWord))) return TakeName(NameIn(line), number);
    if (colon != std::string_view::npos) TakeName(NameIn(line.substr(0, colon)), number);
    EndCode();
    reading_.Skip(NewKey(number), "found " + Quoted(rest) + ", expected words of four hex digits");
  }

  void TakeName(std::string_view name, int number) {
    EndCode();
    if (name_) reading_.Complain(nameLine_, "found a name without a code", *name_);
    name_ = name;
    nameLine_ = number;
  }

  void TakeHex(std::string_view line, int number) {
    const std::string digits = Joined(line);
    const bool isNext = BeginsCode(digits) || IsWhole(digits);
    if (!digits_.empty() && IsWhole(digits_) && isNext) EndCode();
    if (digits_.empty()) line_ = number;
    digits_ += digits;
  }

  RemoteKey NewKey(int number) {
    RemoteKey key;
    key.Line = number;
    key.Name = std::move(name_);
    name_.reset();
    return key;
  }

  void EndCode() {
    if (digits_.empty()) return;
    RemoteKey key = NewKey(line_);
    const std::string digits = std::move(digits_);
    digits_.clear();
    if (std::string why = TakeProntoText(digits, key); !why.empty()) {
      reading_.Skip(std::move(key), std::move(why));
    } else {
      reading_.Add(std::move(key));
    }
  }

  FileReading reading_;
  std::optional<std::string> name_;
  std::string digits_;
  int nameLine_ = 0, line_ = 0;
};

void ReadPronto(std::string_view text, const std::string& path, RemoteFile& file) {
  ProntoReader(path, file).Read(text);
}

/// A line that is a code to its end. A short form is told from a row of numbers by its first count, which is
/// 0.
bool IsPronto(std::string_view text) {
  constexpr std::size_t kFewestWords = 3;
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    line = WithoutClosing(Trimmed(line));
    const std::size_t code = FindCode(line);
    if (code == std::string_view::npos) continue;
    const std::string digits = Joined(line.substr(code));
    if (digits.size() < kFewestWords * kDigitsPerWord) continue;
    if (digits.front() == '0' || digits.compare(2 * kDigitsPerWord, kDigitsPerWord, "0000") == 0) return true;
  }
  return false;
}

/// A name that would be read without what stands around it gets more of it.
std::string ProntoName(const std::string& name) {
  return NameIn(name + ':') == name ? name : '<' + name + '>';
}

std::string WritePronto(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  std::string text;
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Coded && key.Lengths.empty()) continue;
      const std::string code = ProntoText(key);
      if (code.empty()) {
        TellOfKey(told, key, NameFor(key, number), "it has more lengths than the format takes");
        continue;
      }
      if (key.Name) text += ProntoName(OnOneLine(*key.Name)) + ": ";
      text += code + '\n';
    }
  }
  return text;
}

}  // namespace

const RemoteFormat kProntoFormat = {"pronto", "Pronto hex, with names or without", IsPronto, ReadPronto,
                                    WritePronto};

}  // namespace keplo::trade
