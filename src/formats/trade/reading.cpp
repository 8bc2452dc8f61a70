#include "formats/trade/reading.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <numeric>

namespace keplo::trade {

namespace {

constexpr std::string_view kAllBlanks = " \t\r\n\f\v";
constexpr std::size_t kLongestQuoted = 40;  // characters of a wrong word that a text repeats
constexpr int kUsualSilence = 40'000;       // microseconds

std::string TooManyLengths() {
  return "more than " + std::to_string(kMostLengths) + " lengths, which no sender plays";
}

char LowerChar(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

}  // namespace

bool Lines::Next(std::string_view& line) {
  if (rest_.empty()) return false;
  const std::size_t end = rest_.find('\n');
  line = rest_.substr(0, end);
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  ++number_;
  return true;
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kAllBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kAllBlanks) - first + 1);
}

std::string_view TakeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kAllBlanks), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kAllBlanks));
  rest.remove_prefix(word.size());
  return word;
}

bool SameNoCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && StartsNoCase(left, right);
}

bool StartsNoCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() &&
         std::equal(start.begin(), start.end(), text.begin(),
                    [](char a, char b) { return LowerChar(a) == LowerChar(b); });
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerChar);
  return lower;
}

std::optional<std::int64_t> NumberOf(std::string_view word, int base) {
  std::int64_t number = 0;
  const char* const last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, number, base);
  if (error != std::errc() || end != last) return std::nullopt;
  return number;
}

std::optional<std::uint64_t> CNumberOf(std::string_view word) {
  int base = 10;
  if (StartsNoCase(word, "0x")) {
    word.remove_prefix(2);
    base = 16;
  } else if (word.size() > 1 && word.front() == '0') {
    word.remove_prefix(1);
    base = 8;
  }
  std::uint64_t number = 0;
  const char* const last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, number, base);
  if (word.empty() || error != std::errc() || end != last) return std::nullopt;
  return number;
}

std::optional<std::uint8_t> HexByteOf(std::string_view word) {
  if (word.size() != 2 || word.front() == '-') return std::nullopt;
  const std::optional<std::int64_t> byte = NumberOf(word, 16);
  if (!byte) return std::nullopt;
  return static_cast<std::uint8_t>(*byte);
}

std::string HexText(std::uint64_t value, std::size_t digits) {
  std::string text;
  for (; value > 0 || text.size() < digits; value >>= 4U) text.insert(0, 1, "0123456789ABCDEF"[value & 0xFU]);
  return text;
}

std::string Quoted(std::string_view word) {
  if (word.empty()) return "nothing";
  std::size_t size = std::min(word.size(), kLongestQuoted);
  // Not within a character of several bytes.
  while (size > 0 && size < word.size() && (static_cast<unsigned char>(word[size]) & 0xC0U) == 0x80U) --size;
  return '"' + std::string(word.substr(0, size)) + '"';
}

std::string UnknownProtocol(std::string_view name) {
  return name.empty() ? "found no protocol, expected its name"
                      : "the protocol " + Quoted(name) + " is not known";
}

std::string NameOfPath(const std::string& path) {
  if (path == "-" || path == "standard input") return {};
  std::string name = std::filesystem::path(path).filename().string();
  // "NAME.lircd.conf" has two endings.
  for (const std::string_view ending : {".lircd.conf", ".lirc.conf"}) {
    if (Lower(name).ends_with(ending)) return name.substr(0, name.size() - ending.size());
  }
  return std::filesystem::path(name).stem().string();
}

void FileReading::BeginRemote(std::string name) { file_.Remotes.push_back({std::move(name), {}}); }

void FileReading::Add(RemoteKey key) {
  if (key.Lengths.size() > kMostLengths) return Skip(std::move(key), TooManyLengths());
  if (file_.Remotes.empty()) BeginRemote(NameOfPath(path_));
  if (keys_ == kMostKeys) {
    if (!full_) {
      Complain(key.Line, "more than " + std::to_string(kMostKeys) + " keys; those from here on are left out");
    }
    full_ = true;
    return;
  }
  ++keys_;
  key.File = path_;
  file_.Remotes.back().Keys.push_back(std::move(key));
}

void FileReading::Skip(RemoteKey key, std::string reason) {
  key.Coded.reset();
  key.Lengths.clear();
  key.Toggled.clear();
  key.Skipped = std::move(reason);
  Add(std::move(key));
}

void FileReading::Complain(int line, std::string text, std::string key) {
  file_.Complaints.push_back({path_, line, std::move(key), std::move(text)});
}

void LengthList::Add(std::int64_t length) {
  if (length < 1 || length > kLongestPulse) {
    Refuse("found a length of " + std::to_string(length) + ", expected 1 to " +
           std::to_string(kLongestPulse) + " microseconds");
  } else if (lengths_.size() == kMostLengths) {
    Refuse(TooManyLengths());
  } else {
    lengths_.push_back(static_cast<int>(length));
  }
}

void LengthList::AddWord(std::string_view word) {
  if (const std::optional<std::int64_t> length = NumberOf(word)) {
    Add(*length);
  } else {
    Refuse("found " + Quoted(word) + ", expected a length in microseconds");
  }
}

void AddLengths(FileReading& reading, RemoteKey key, LengthList lengths) {
  if (!lengths.Fault().empty()) {
    reading.Skip(std::move(key), lengths.Fault());
  } else if (lengths.Size() == 0) {
    reading.Skip(std::move(key), "there are no lengths, expected a mark and a space in turn");
  } else {
    key.Lengths = lengths.Take();
    reading.Add(std::move(key));
  }
}

std::string OnOneLine(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return line;
}

int CarrierOf(const RemoteKey& key) { return key.Carrier.value_or(kUsualCarrier); }

PulseTrain PressOf(const RemoteKey& key) {
  if (!key.Lengths.empty() || !key.Coded) return key.Lengths;
  const RepeatKind kind = key.Coded->Again.Kind;
  return PressLengths(*key.Coded, kind == RepeatKind::Unknown || kind == RepeatKind::None ? 0 : 1);
}

int ClosingSilence(const RemoteKey& key) {
  if (const int silence = key.Coded ? SilenceAfter(*key.Coded) : 0; silence > 0) return silence;
  const std::int64_t time =
      key.GapFromStart ? std::accumulate(key.Lengths.begin(), key.Lengths.end(), std::int64_t{0}) : 0;
  return key.Gap > time ? key.Gap - static_cast<int>(time) : kUsualSilence;
}

PulseTrain PressAndSilence(const RemoteKey& key) {
  PulseTrain press = PressOf(key);
  if (key.Gap > 0 && !key.Described && press.size() % 2 != 0) press.push_back(ClosingSilence(key));
  return press;
}

std::string NameFor(const RemoteKey& key, std::size_t number) {
  return key.Name ? *key.Name : "key " + std::to_string(number);
}

void TellOfKey(std::vector<Complaint>& told, const RemoteKey& key, std::string name, std::string text) {
  told.push_back({key.File, key.Line, std::move(name), std::move(text)});
}

void TellOnce(std::vector<Complaint>& told, std::string_view text) {
  const bool known = std::any_of(told.begin(), told.end(),
                                 [&](const Complaint& complaint) { return complaint.Text == text; });
  if (!known) told.push_back({{}, 0, {}, std::string(text)});
}

void TellRepeat(std::vector<Complaint>& told, const RemoteKey& key) {
  if (!key.Coded || key.Coded->Again.Kind == RepeatKind::Unknown) return;
  TellOnce(told, "the format does not say how a held key is repeated");
}

}  // namespace keplo::trade
