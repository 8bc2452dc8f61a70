#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <pugixml.hpp>

#include "formats/families.h"
#include "formats/irp.h"
#include "formats/trade/json_text.h"
#include "formats/trade/pronto_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kLargestXml = std::size_t{8} * 1024 * 1024;  // bytes; its tree takes many times as much
constexpr int kDeepestSet = 32;                                    // sets of commands within each other

/// The name of an element without its namespace.
std::string_view LocalName(const pugi::xml_node& node) {
  const std::string_view name = node.name();
  return name.substr(name.find(':') + 1);  // npos + 1 is 0
}

/// Parameters of a protocol, as a set hands them down to its commands.
struct GirrParameters {
  std::string Protocol;
  ProtocolValues Values;
  std::map<std::string, std::string, std::less<>> NoNumbers;  // by name, what stands in the place of a value
};

/// A number that a file may write with a fraction.
std::optional<std::int64_t> RoundedNumber(std::string_view word) {
  if (word.starts_with('+') || word.starts_with('-')) word.remove_prefix(1);
  double value = 0;
  const char* const last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, value, std::chars_format::fixed);
  if (error != std::errc() || end != last || value > 1e9) return std::nullopt;
  return std::llround(value);
}

void ReadDurations(const pugi::xml_node& part, LengthList& lengths) {
  const auto add = [&](std::string_view word) {
    const std::optional<std::int64_t> length = RoundedNumber(word);
    if (!length) return lengths.Refuse("found " + Quoted(word) + ", expected a length in microseconds");
    const bool mark = lengths.Size() % 2 == 0;
    if (word.front() == (mark ? '-' : '+'))
      return lengths.Refuse("found " + Quoted(word) + ", expected a " + (mark ? "mark, +" : "space, -"));
    lengths.Add(*length);
  };
  for (const pugi::xml_node& child : part.children()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
      std::string_view text = child.value();
      for (std::string_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) add(word);
    } else if (LocalName(child) == "flash" || LocalName(child) == "gap") {
      add(Trimmed(child.text().get()));
    }
  }
}

class GirrReader {
 public:
  GirrReader(std::string_view text, const std::string& path, RemoteFile& file) : reading_(path, file) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\n') lineEnds_.push_back(i);
    }
  }

  void Read(const pugi::xml_document& document) { ReadSet(document, {}, 0); }

  /// A command that the text breaks off in is left out.
  /// @param sound what stands ahead of the fault
  void ReadCut(const pugi::xml_document& document, std::string_view sound) {
    for (pugi::xml_node last = document.last_child(); last; last = last.last_child()) {
      if (LocalName(last) == "command") cut_ = last;
    }
    const auto begin = static_cast<std::size_t>(std::max<std::ptrdiff_t>(cut_.offset_debug(), 0));
    const std::string_view command =
        sound.substr(std::min(begin + std::string_view(cut_.name()).size(), sound.size()));
    const std::size_t tagEnd = command.find('>');
    const bool closesItself = tagEnd != std::string_view::npos && command.substr(0, tagEnd).ends_with('/');
    if (closesItself || command.find("command>") != std::string_view::npos) cut_ = {};
    Read(document);
  }

 private:
  int LineOf(const pugi::xml_node& node) const {
    const auto place = static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
    return static_cast<int>(std::lower_bound(lineEnds_.begin(), lineEnds_.end(), place) - lineEnds_.begin()) +
           1;
  }

  void ReadSet(const pugi::xml_node& set, GirrParameters inherited, int depth) {
    if (depth == kDeepestSet) {
      return reading_.Complain(LineOf(set), "found sets more than " + std::to_string(kDeepestSet) +
                                                " deep within each other, expected fewer");
    }
    for (const pugi::xml_node& child : set.children()) {
      if (LocalName(child) == "parameters") TakeParameters(child, inherited);
    }
    for (const pugi::xml_node& child : set.children()) {
      const std::string_view name = LocalName(child);
      if (name == "command") {
        ReadCommand(child, inherited);
      } else if (name == "remote") {
        reading_.BeginRemote(child.attribute("name").value());
        ReadSet(child, inherited, depth + 1);
      } else if (name == "remotes" || name == "commandSet") {
        ReadSet(child, inherited, depth + 1);
      }
    }
  }

  static void SetValue(GirrParameters& parameters, std::string_view name, std::string_view text) {
    ProtocolValues& values = parameters.Values;
    const std::optional<std::int64_t> number =
        StartsNoCase(text, "0x") ? NumberOf(text.substr(2), 16) : NumberOf(text);
    // What is no number fits no protocol.
    constexpr long kWrong = 1L << 30;
    const long value = number.value_or(kWrong);
    parameters.NoNumbers.erase(std::string(name));
    const std::array<std::string_view, 5> known = {"D", "S", "F", "T", "PairID"};
    if (!number && std::find(known.begin(), known.end(), name) != known.end())
      parameters.NoNumbers.emplace(name, text);
    if (name == "D") values.D = value;
    if (name == "S") values.S = value;
    if (name == "F") values.F = value;
    if (name == "T") values.T = value;
    if (name == "PairID") values.Pair = value;
  }

  static void TakeParameters(const pugi::xml_node& node, GirrParameters& parameters) {
    if (const auto protocol = node.attribute("protocol")) parameters.Protocol = protocol.value();
    for (const pugi::xml_node& child : node.children()) {
      if (LocalName(child) != "parameter") continue;
      SetValue(parameters, child.attribute("name").value(), child.attribute("value").value());
    }
  }

  void ReadCommand(const pugi::xml_node& command, GirrParameters parameters) {
    RemoteKey key;
    key.Line = LineOf(command);
    if (const auto name = command.attribute("name")) key.Name = name.value();
    bool hasRaw = false, hasCcf = false;
    for (const pugi::xml_node& child : command.children()) {
      const std::string_view name = LocalName(child);
      if (name == "parameters") TakeParameters(child, parameters);
      hasRaw |= name == "raw";
      hasCcf |= name == "ccf";
    }
    if (const auto function = command.attribute("F")) SetValue(parameters, "F", function.value());
    if (!parameters.Protocol.empty()) key.Protocol = parameters.Protocol;
    const std::string_view master = command.attribute("master").value();
    if (cut_ && command == cut_) return reading_.Skip(std::move(key), "the file breaks off in it");
    std::string why = "found neither parameters nor lengths";
    // The true form first; the others stand in for it.
    std::array<std::string_view, 4> order = {master.empty() ? "raw" : master, "raw", "ccf", "parameters"};
    if (master == "parameters") std::swap(order[1], order[3]);
    for (const std::string_view form : order) {
      if (form == "raw" && hasRaw) why = TakeForms(command, "raw", key);
      if (form == "ccf" && hasCcf) why = TakeForms(command, "ccf", key);
      if (form == "parameters" && !parameters.Protocol.empty()) {
        why = TakeValues(parameters.Protocol, parameters.Values, key);
        if (const auto wrong = parameters.NoNumbers.begin();
            !why.empty() && wrong != parameters.NoNumbers.end())
          why = "found the " + wrong->first + ' ' + Quoted(wrong->second) + ", expected a number";
        if (!why.empty()) why.insert(0, parameters.Protocol + ": ");
      }
      if (why.empty()) break;
    }
    if (why.empty()) return reading_.Add(std::move(key));
    reading_.Skip(std::move(key), std::move(why));
  }

  /// The forms of both toggles, if there are two.
  static std::string TakeForms(const pugi::xml_node& command, std::string_view form, RemoteKey& key) {
    std::string why;
    bool taken = false;
    for (const pugi::xml_node& child : command.children()) {
      if (LocalName(child) != form) continue;
      RemoteKey one;
      why = form == "raw" ? TakeGirrRaw(child, one) : TakeProntoText(child.text().get(), one);
      if (!why.empty()) return why;
      if (!taken) {
        key.Coded = one.Coded;
        key.Carrier = one.Carrier;
        key.Lengths = std::move(one.Lengths);
      } else if (one.Lengths == key.Lengths || one.Lengths == key.Toggled) {
        continue;
      } else if (key.Toggled.empty()) {
        key.Toggled = std::move(one.Lengths);
      } else {
        key.Lost = "of a key with more than two forms not all are kept";
      }
      taken = true;
    }
    return why;
  }

  static std::string TakeGirrRaw(const pugi::xml_node& raw, RemoteKey& key) {
    constexpr std::array<std::string_view, 3> kParts = {"intro", "repeat", "ending"};
    std::array<PulseTrain, kParts.size()> parts;
    for (std::size_t i = 0; i < kParts.size(); ++i) {
      LengthList lengths;
      for (const pugi::xml_node& part : raw.children()) {
        if (LocalName(part) == kParts[i]) ReadDurations(part, lengths);
      }
      if (!lengths.Fault().empty()) return lengths.Fault();
      parts[i] = lengths.Take();
    }
    if (const auto frequency = raw.attribute("frequency")) {
      const std::optional<std::int64_t> carrier = RoundedNumber(frequency.value());
      if (!carrier || *carrier > kMostCarrier)
        return "found the frequency " + Quoted(frequency.value()) + ", expected a carrier in Hz";
      key.Carrier = static_cast<int>(*carrier);
    }
    auto& [intro, repeat, ending] = parts;
    if (intro.empty()) intro = repeat;
    if (ending.empty()) {
      TakeParts(std::move(intro), repeat, key);
    } else {
      // What is sent when a key is let go belongs to the press.
      for (const PulseTrain& part : {repeat, ending}) intro.insert(intro.end(), part.begin(), part.end());
      TakeParts(std::move(intro), {}, key);
    }
    if (key.Lengths.empty()) return "there are no lengths";
    return {};
  }

  FileReading reading_;
  pugi::xml_node cut_;
  std::vector<std::size_t> lineEnds_;
};

void ReadGirr(std::string_view text, const std::string& path, RemoteFile& file) {
  if (text.size() > kLargestXml) {
    throw FormatError(path + ": larger than the " + std::to_string(kLargestXml) +
                      " bytes that a Girr file may have");
  }
  pugi::xml_document document;
  const pugi::xml_parse_result result =
      document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_auto);
  if (!result) {
    const std::string_view sound =
        text.substr(0, static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)));
    const auto line = 1 + std::count(sound.begin(), sound.end(), '\n');
    FileReading(path, file).Complain(static_cast<int>(line), std::string("no XML: ") + result.description());
    return GirrReader(text, path, file).ReadCut(document, sound);
  }
  // What stands before a fault is read all the same.
  GirrReader(text, path, file).Read(document);
}

bool IsGirr(std::string_view text) {
  if (!Trimmed(text).starts_with('<')) return false;
  const auto has = [&](std::string_view word) { return text.find(word) != std::string_view::npos; };
  const bool hasCommands = has("<command") || has(":command");
  const bool hasSignals = has("raw") || has("ccf") || has("parameters");
  return (has("remote") && (hasCommands || has("irr"))) || (hasCommands && hasSignals);
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : Utf8Text(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\n':
        escaped += "&#10;";
        break;
      case '\r':
        escaped += "&#13;";
        break;
      case '\t':
        escaped += "&#9;";
        break;
      default:
        // Others of these no XML can have.
        escaped += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
    }
  }
  return escaped;
}

void WritePart(std::string_view name, PulseTrain part, int silence, std::string& text) {
  if (part.empty()) return;
  if (part.size() % 2 != 0) part.push_back(silence);
  text += '<' + std::string(name) + '>';
  for (std::size_t i = 0; i < part.size(); ++i) {
    text += (i == 0 ? "+" : i % 2 == 0 ? " +" : " -") + std::to_string(part[i]);
  }
  text += "</" + std::string(name) + '>';
}

void WriteGirrRaw(const RemoteKey& key, std::string_view toggle, std::string& text) {
  PulseTrain intro = PressOf(key), repeat;
  if (key.Coded && key.Coded->Again.Kind != RepeatKind::Unknown &&
      key.Coded->Again.Kind != RepeatKind::None) {
    const PulseTrain whole = PressLengths(*key.Coded, 1);
    intro = FrameLengths(*key.Coded);
    repeat.assign(whole.begin() + static_cast<std::ptrdiff_t>(intro.size()) + 1, whole.end());
    if (key.Coded->Again.Kind == RepeatKind::Frame) intro.clear();
  }
  text += "    <raw frequency=\"" + std::to_string(CarrierOf(key)) + '"' + std::string(toggle) + '>';
  WritePart("intro", intro, ClosingSilence(key), text);
  WritePart("repeat", repeat, ClosingSilence(key), text);
  text += "</raw>\n";
}

void WriteValues(const NamedValues& named, std::string& text) {
  text += "    <parameters protocol=\"" + Lower(named.Protocol) + "\">\n";
  const std::array<std::pair<std::string_view, long>, 3> values = {
      std::pair{std::string_view("D"), named.Values.D}, std::pair{std::string_view("S"), named.Values.S},
      std::pair{std::string_view("F"), named.Values.F}};
  for (const auto& [name, value] : values) {
    if (value < 0) continue;
    text += "     <parameter name=\"" + std::string(name) + "\" value=\"" + std::to_string(value) + "\"/>\n";
  }
  text += "    </parameters>\n";
}

/// What every second press of a key sends, if that differs.
std::optional<RemoteKey> OtherForm(const RemoteKey& key) {
  if (key.Toggled.empty() && !(key.Coded && key.Coded->Toggle)) return std::nullopt;
  RemoteKey other = key;
  other.Lengths = key.Toggled;
  if (key.Coded && !key.Toggled.empty()) {
    // More may be another than the digit that turns over; what is repeated is told of the first form.
    other.Coded = ReadPress(key.Toggled, key.Carrier);
    if (other.Coded) other.Coded->Again = key.Coded->Again;
  } else if (key.Coded) {
    char& digit = other.Coded->Digits[*key.Coded->Toggle];
    digit = digit == '0' ? '1' : '0';
  }
  return other;
}

std::string WriteGirr(const std::vector<Remote>& remotes, std::vector<Complaint>& /*told*/) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<remotes xmlns=\"http://www.harctoolbox.org/Girr\" girrVersion=\"1.2\">\n";
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    text += " <remote name=\"" + Escaped(remote.Name) + "\">\n  <commandSet name=\"commandSet\">\n";
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Coded && key.Lengths.empty()) continue;
      const std::optional<NamedValues> named = ValuesOf(key);
      text += "   <command name=\"" + Escaped(NameFor(key, number)) + "\" master=\"" +
              (named && !named->OwnCarrier && !named->OwnRepeat ? "parameters" : "raw") + "\">\n";
      if (named) WriteValues(*named, text);
      const std::optional<RemoteKey> other = OtherForm(key);
      WriteGirrRaw(key, other ? " T=\"0\"" : "", text);
      if (other) WriteGirrRaw(*other, " T=\"1\"", text);
      text += "   </command>\n";
    }
    text += "  </commandSet>\n </remote>\n";
  }
  return text + "</remotes>\n";
}

}  // namespace

const RemoteFormat kGirrFormat = {"girr", "Girr XML", IsGirr, ReadGirr, WriteGirr, KeptForms::Both};

}  // namespace keplo::trade
