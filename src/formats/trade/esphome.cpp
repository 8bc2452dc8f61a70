#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>

#include "formats/families.h"
#include "formats/trade/esphome_code.h"
#include "formats/trade/json_text.h"
#include "formats/trade/pronto_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kLargestYaml =
    std::size_t{1} * 1024 * 1024;              // bytes; its tree takes many times as much
constexpr std::size_t kMostNodes = 2'000'000;  // that are walked: aliases may stand for many
constexpr int kDeepestNode = 64;
constexpr std::string_view kAction = "remote_transmitter.transmit_";
constexpr std::string_view kReceived = "Received ";

/// "38kHz", "38000Hz", "38000" or "0".
std::optional<int> FrequencyOf(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc()) return std::nullopt;
  const std::string unit =
      Lower(Trimmed(std::string_view(end, static_cast<std::size_t>(text.data() + text.size() - end))));
  if (unit == "khz") value *= 1000;
  if ((!unit.empty() && unit != "hz" && unit != "khz") || value < 0 || value > kMostCarrier)
    return std::nullopt;
  return static_cast<int>(std::lround(value));
}

/// Signed lengths, in turn.
void AddSigned(std::string_view word, LengthList& lengths) {
  const bool mark = lengths.Size() % 2 == 0;
  if ((word.front() != '-') != mark) {
    return lengths.Refuse("found " + Quoted(word) + ", expected a " + (mark ? "mark above" : "space below") +
                          " 0");
  }
  lengths.AddWord(word.substr(word.front() == '-' || word.front() == '+' ? 1 : 0));
}

/// What a configuration lets stand for other texts: "$name" or "${name}".
class Substitutions {
 public:
  explicit Substitutions(const YAML::Node& root) {
    const YAML::Node rows = root.IsMap() ? root["substitutions"] : YAML::Node();
    if (!rows.IsDefined() || !rows.IsMap()) return;
    for (const auto& row : rows) {
      if (row.first.IsScalar() && row.second.IsScalar()) texts_[row.first.Scalar()] = row.second.Scalar();
    }
  }

  /// The text with what stands for its names, which may have no names themselves.
  std::string In(std::string_view text) const {
    std::string whole;
    for (std::size_t place = text.find('$'); place != std::string_view::npos; place = text.find('$')) {
      whole += text.substr(0, place);
      text.remove_prefix(place);
      const bool braced = text.substr(1, 1) == "{";
      const std::size_t first = braced ? 2 : 1;
      const std::size_t end = std::min(text.find_first_not_of(kNameCharacters, first), text.size());
      const auto found = texts_.find(text.substr(first, end - first));
      const bool closed = !braced || text.substr(end, 1) == "}";
      const std::size_t taken = found != texts_.end() && closed ? end + (braced ? 1 : 0) : 1;
      whole += taken > 1 ? std::string_view(found->second) : text.substr(0, 1);
      text.remove_prefix(taken);
    }
    return whole.append(text);
  }

 private:
  static constexpr std::string_view kNameCharacters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

  std::map<std::string, std::string, std::less<>> texts_;
};

class YamlReader {
 public:
  YamlReader(const YAML::Node& root, const std::string& path, RemoteFile& file)
      : reading_(path, file), texts_(root) {}

  void Walk(const YAML::Node& node, const std::string& name, int depth) {
    if (depth == kDeepestNode || ++nodes_ > kMostNodes || reading_.IsFull()) {
      if (!told_)
        reading_.Complain(node.Mark().line + 1, "found too many or too deep nodes; the rest is left out");
      told_ = true;
      return;
    }
    if (node.IsSequence()) {
      for (const YAML::Node& child : node) Walk(child, name, depth + 1);
    } else if (node.IsMap()) {
      WalkMap(node, name, depth);
    }
  }

 private:
  void WalkMap(const YAML::Node& node, const std::string& outer, int depth) {
    std::string name = outer;
    for (const auto& child : node) {
      const bool names = child.first.IsScalar() &&
                         (child.first.Scalar() == "name" || (child.first.Scalar() == "id" && name == outer));
      if (names && child.second.IsScalar()) name = child.second.Scalar();
    }
    for (const auto& child : node) {
      const std::string key = child.first.IsScalar() ? child.first.Scalar() : std::string();
      if (key.starts_with(kAction)) {
        ReadAction(key.substr(kAction.size()), child.first, child.second, name);
      } else {
        Walk(child.second, name, depth + 1);
      }
    }
  }

  void ReadAction(const std::string& protocol, const YAML::Node& place, const YAML::Node& fields,
                  const std::string& name) {
    RemoteKey key;
    key.Line = place.Mark().line + 1;
    if (!name.empty()) key.Name = texts_.In(name);
    if (protocol == "raw") return ReadRaw(fields, std::move(key));
    EsphomeFields texts;
    if (fields.IsMap()) {
      for (const auto& field : fields) {
        if (!field.first.IsScalar() || !field.second.IsScalar()) continue;
        const bool tagged = field.second.Tag().starts_with('!') && field.second.Tag().size() > 1;
        texts[field.first.Scalar()] = tagged ? field.second.Tag() : texts_.In(field.second.Scalar());
      }
    }
    std::string why;
    if (protocol == "pronto") {
      why = TakeProntoText(texts["data"], key);
    } else {
      key.Protocol = protocol;
      why = TakeEsphome(protocol, texts, key);
    }
    if (why.empty()) return reading_.Add(std::move(key));
    reading_.Skip(std::move(key), std::move(why));
  }

  void ReadRaw(const YAML::Node& fields, RemoteKey key) {
    LengthList lengths;
    const YAML::Node code = fields.IsMap() ? fields["code"] : YAML::Node();
    if (!code.IsDefined() || !code.IsSequence()) {
      lengths.Refuse("found no list \"code\", expected signed lengths");
    } else {
      for (const YAML::Node& length : code) {
        if (!lengths.Fault().empty()) break;
        if (length.IsScalar() && !length.Scalar().empty()) {
          AddSigned(length.Scalar(), lengths);
        } else {
          lengths.Refuse("found no number, expected a length in microseconds");
        }
      }
    }
    const YAML::Node carrier = fields.IsMap() ? fields["carrier_frequency"] : YAML::Node();
    if (carrier.IsDefined() && carrier.IsScalar()) {
      key.Carrier = FrequencyOf(carrier.Scalar());
      if (!key.Carrier)
        lengths.Refuse("found the carrier_frequency " + Quoted(carrier.Scalar()) +
                       ", expected one such as 38kHz");
    }
    AddLengths(reading_, std::move(key), std::move(lengths));
  }

  FileReading reading_;
  Substitutions texts_;
  std::size_t nodes_ = 0;
  bool told_ = false;
};

/// A log of the receiver; a list of lengths or of words goes on in the lines behind, indented.
class LogReader {
 public:
  LogReader(const std::string& path, RemoteFile& file) : reading_(path, file) {}

  void Read(std::string_view text) {
    Lines lines(text);
    std::string_view line;
    while (lines.Next(line)) ReadLine(WithoutColours(line), lines.Number());
    EndList();
  }

 private:
  /// A log that was shown on a terminal has words for its colours, "ESC[0;36m".
  static std::string WithoutColours(std::string_view line) {
    std::string plain;
    for (std::size_t place = line.find("\x1B["); place != std::string_view::npos;
         place = line.find("\x1B[")) {
      plain += line.substr(0, place);
      line.remove_prefix(std::min(line.find_first_not_of("0123456789;", place + 2), line.size() - 1) + 1);
    }
    return plain.append(line);
  }

  void ReadLine(std::string_view line, int number) {
    const std::size_t place = line.find(kReceived);
    if (place == std::string_view::npos) return GoOn(line);
    EndList();
    line.remove_prefix(place + kReceived.size());
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return;
    const std::string protocol = Lower(Trimmed(line.substr(0, colon)));
    const std::string_view rest = Trimmed(line.substr(colon + 1));
    key_ = {};
    key_.Line = number;
    if (protocol == "raw" || protocol == "pronto") {
      list_ = protocol;
      text_ = rest.starts_with("data=") ? rest.substr(5) : rest;
      return;
    }
    key_.Protocol = std::string(Trimmed(line.substr(0, colon)));
    std::string why = TakeEsphome(protocol, FieldsOf(rest), key_);
    if (why.empty()) return reading_.Add(std::move(key_));
    reading_.Skip(std::move(key_), std::move(why));
  }

  /// What a line of the log has after its head "[time][level][part]:".
  static std::string_view AfterHead(std::string_view line) {
    const std::size_t head = line.rfind("]:");
    return head == std::string_view::npos ? line : line.substr(head + 2);
  }

  void GoOn(std::string_view line) {
    if (list_.empty()) return;
    const std::string_view rest = AfterHead(line);
    const bool goesOn = rest.starts_with("  ") || rest.starts_with('\t') ||
                        (list_ == "pronto" && !Trimmed(rest).empty() &&
                         rest.find_first_not_of("0123456789ABCDEFabcdef \t") == std::string_view::npos);
    if (!goesOn) return EndList();
    text_ += ' ' + std::string(Trimmed(rest));
  }

  static EsphomeFields FieldsOf(std::string_view text) {
    EsphomeFields fields;
    for (std::string_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) {
      while (word.ends_with(',')) word.remove_suffix(1);
      const std::size_t equal = word.find('=');
      if (equal != std::string_view::npos)
        fields[std::string(word.substr(0, equal))] = word.substr(equal + 1);
    }
    return fields;
  }

  void EndList() {
    if (list_.empty()) return;
    const std::string list = std::exchange(list_, {});
    std::string why;
    if (list == "pronto") {
      if (why = TakeProntoText(text_, key_); why.empty()) return reading_.Add(std::move(key_));
      return reading_.Skip(std::move(key_), std::move(why));
    }
    LengthList lengths;
    std::string_view rest = text_;
    for (std::string_view word = TakeWord(rest); !word.empty(); word = TakeWord(rest)) {
      while (word.ends_with(',')) word.remove_suffix(1);
      if (!word.empty()) AddSigned(word, lengths);
    }
    AddLengths(reading_, std::move(key_), std::move(lengths));
  }

  FileReading reading_;
  RemoteKey key_;
  std::string list_;  // what is being listed
  std::string text_;
};

/// The parser takes its time over what it then refuses.
bool HasManyBrackets(std::string_view text) {
  int row = 0;
  for (const char c : text) {
    if (c == '[' || c == '{') {
      if (++row > kDeepestNode) return true;
    } else if (c != ' ' && c != '\n') {
      row = 0;
    }
  }
  return false;
}

void ReadYaml(std::string_view text, const std::string& path, RemoteFile& file) {
  if (text.size() > kLargestYaml) {
    throw FormatError(path + ": larger than the " + std::to_string(kLargestYaml) +
                      " bytes that a configuration may have");
  }
  if (HasManyBrackets(text)) {
    return FileReading(path, file)
        .Complain(1,
                  "found more than " + std::to_string(kDeepestNode) + " brackets in a row, expected fewer");
  }
  try {
    // A configuration is one document, and some wrong texts have no last one.
    const YAML::Node root = YAML::Load(std::string(text));
    YamlReader(root, path, file).Walk(root, "", 0);
  } catch (const YAML::Exception& error) {
    FileReading(path, file).Complain(std::max(error.mark.line, 0) + 1, "no YAML: " + error.msg);
  }
}

bool IsAction(std::string_view text) { return text.find(kAction) != std::string_view::npos; }

bool IsLog(std::string_view text) {
  return text.find("[remote.") != std::string_view::npos && text.find(kReceived) != std::string_view::npos;
}

void ReadEsphome(std::string_view text, const std::string& path, RemoteFile& file) {
  if (!IsLog(text)) return ReadYaml(text, path, file);
  LogReader(path, file).Read(text);
}

bool IsEsphome(std::string_view text) { return IsAction(text) || IsLog(text); }

std::string WriteEsphome(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  std::string text = "button:\n";
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Coded && key.Lengths.empty()) continue;
      const std::string action = EsphomeAction(key, "      ");
      const Family* const family = key.Coded ? FamilyOf(*key.Coded, key.Carrier) : nullptr;
      const bool isRaw = action.find("transmit_raw") != std::string::npos;
      if (isRaw || (family != nullptr && HasOwnRepeat(key, *family))) TellRepeat(told, key);
      text += "  - platform: template\n    name: " + JsonText(NameFor(key, number)) + "\n    on_press:\n" +
              action;
    }
  }
  if (remotes.size() > 1) TellOnce(told, "the format keeps no remotes; all keys are written as one");
  return text;
}

}  // namespace

const RemoteFormat kEsphomeFormat = {"esphome", "ESPHome's actions in YAML, and its receiver's log",
                                     IsEsphome, ReadEsphome, WriteEsphome};

}  // namespace keplo::trade
