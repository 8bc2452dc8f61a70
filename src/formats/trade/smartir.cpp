#include <algorithm>
#include <set>

#include "formats/trade/broadlink.h"
#include "formats/trade/json_text.h"
#include "formats/trade/pronto_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

/// Numbers between whatever parts them, a sign with each or none.
std::string TakeNumbers(std::string_view text, RemoteKey& key) {
  LengthList lengths;
  constexpr std::string_view kParts = " \t\r\n,;[]\"";
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(kParts), text.size()));
    if (text.empty()) break;
    std::string_view word = text.substr(0, text.find_first_of(kParts));
    text.remove_prefix(word.size());
    if (word.starts_with('+') || word.starts_with('-')) word.remove_prefix(1);
    lengths.AddWord(word);
  }
  if (!lengths.Fault().empty()) return lengths.Fault();
  if (lengths.Size() == 0) return "there are no lengths in it";
  key.Lengths = lengths.Take();
  return {};
}

std::string TakeBytes(const std::optional<std::vector<std::uint8_t>>& bytes, std::string_view what,
                      RemoteKey& key) {
  if (!bytes) return "found a text that is no " + std::string(what) + ", or is cut";
  return TakeBroadlink(*bytes, key);
}

std::string TakeEncoded(std::string_view text, const std::string& encoding, RemoteKey& key) {
  if (encoding == "base64" || encoding.empty()) return TakeBytes(BytesOfBase64(text), "base64", key);
  if (encoding == "hex") return TakeBytes(BytesOfHex(text), "hex", key);
  if (encoding == "pronto") return TakeProntoText(text, key);
  if (encoding == "raw") return TakeNumbers(text, key);
  return "the encoding " + Quoted(encoding) + " is not known";
}

std::string TextOf(const Json& object, const char* name) {
  return object.contains(name) && object[name].is_string() ? object[name].get<std::string>() : std::string();
}

class SmartIrReader {
 public:
  SmartIrReader(const std::string& path, RemoteFile& file) : reading_(path, file) {}

  /// @param codes of the file
  void Read(const Json& codes, const Json& root) {
    std::string name = TextOf(root, "manufacturer");
    if (root.contains("supportedModels") && root["supportedModels"].is_array()) {
      for (const Json& model : root["supportedModels"]) {
        if (!model.is_string()) continue;
        name += (name.empty() ? "" : " ") + model.get<std::string>();
        break;
      }
    }
    reading_.BeginRemote(name.empty() ? NameOfPath(reading_.Path()) : name);
    encoding_ = Lower(Trimmed(TextOf(root, "commandsEncoding")));
    ReadTree(codes, "");
  }

 private:
  void ReadTree(const Json& node, const std::string& name) {
    if (reading_.IsFull()) return;
    if (node.is_object()) {
      const std::string above = name.empty() ? name : name + '/';
      for (const auto& [child, value] : node.items()) ReadTree(value, std::string(above).append(child));
    } else if (node.is_array() && encoding_ == "raw" && !node.empty() && node[0].is_number()) {
      AddKey(node.dump(), name);
    } else if (node.is_array()) {
      for (std::size_t i = 0; i < node.size(); ++i) {
        ReadTree(node[i], node.size() == 1 ? name : name + '/' + std::to_string(i + 1));
      }
    } else if (node.is_string()) {
      AddKey(node.get_ref<const std::string&>(), name);
    } else {
      RemoteKey key;
      key.Name = name;
      reading_.Skip(std::move(key), "found " + Shown(node) + ", expected a code");
    }
  }

  void AddKey(std::string_view text, const std::string& name) {
    RemoteKey key;
    key.Name = name;
    if (std::string why = TakeEncoded(Trimmed(text), encoding_, key); !why.empty()) {
      reading_.Skip(std::move(key), std::move(why));
    } else {
      reading_.Add(std::move(key));
    }
  }

  FileReading reading_;
  std::string encoding_;
};

bool LooksHex(std::string_view word) {
  return word.size() > 10 && std::all_of(word.begin(), word.end(),
                                         [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
}

/// Whether a word is a Broadlink code for infrared or radio.
bool LooksBroadlink(std::string_view word) {
  // Behind the kind stands how often the device repeats it, seldom more than a few times.
  if (LooksHex(word) && (StartsNoCase(word, "260") || StartsNoCase(word, "b20") || StartsNoCase(word, "d70")))
    return true;
  return word.size() > 10 && (word.starts_with("Jg") || word.starts_with("sg") || word.starts_with("1w")) &&
         word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=") ==
             std::string_view::npos;
}

std::string_view LastWord(std::string_view line) {
  const std::size_t blank = line.find_last_of(" \t:,=\"", line.find_last_not_of("=,\""));
  std::string_view word = blank == std::string_view::npos ? line : line.substr(blank + 1);
  while (word.ends_with(',') || word.ends_with('"')) word.remove_suffix(1);
  return word;
}

/// A line of bytes with blanks between them as one word; empty if it is none.
std::string JoinedBytes(std::string_view line) {
  std::string joined;
  for (std::string_view word = TakeWord(line); !word.empty(); word = TakeWord(line)) {
    if (word.size() != 2) return {};
    joined += word;
  }
  return LooksBroadlink(joined) ? joined : std::string();
}

/// Codes as people paste them: one a line, a name before it or none.
void ReadCodeLines(std::string_view text, FileReading& reading) {
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    line = Trimmed(line);
    if (line.empty() || line.front() == '#') continue;
    const std::string bytes = JoinedBytes(line);
    if (!bytes.empty()) line = bytes;
    const std::string_view word = LastWord(line);
    RemoteKey key;
    key.Line = lines.Number();
    std::string_view name = line.substr(0, static_cast<std::size_t>(word.data() - line.data()));
    while (!name.empty() && std::string_view(" \t:,=\"").find(name.back()) != std::string_view::npos)
      name.remove_suffix(1);
    while (!name.empty() && (name.front() == '"' || name.front() == ' ')) name.remove_prefix(1);
    if (!name.empty()) key.Name = name;
    std::string why = LooksHex(word) ? TakeBytes(BytesOfHex(word), "hex", key)
                                     : TakeBytes(BytesOfBase64(word), "base64", key);
    if (why.empty()) {
      reading.Add(std::move(key));
    } else {
      reading.Skip(std::move(key), std::move(why));
    }
  }
}

/// Whether a text is Home Assistant's storage of codes.
bool IsCodeTree(std::string_view text) { return text.find("\"broadlink_remote_") != std::string_view::npos; }

void ReadSmartIr(std::string_view text, const std::string& path, RemoteFile& file) {
  if (!Trimmed(text).starts_with('{')) {
    FileReading reading(path, file);
    return ReadCodeLines(text, reading);
  }
  std::string why;
  const Json root = ParseJson(text, why);
  if (root.is_object() && root.contains("commands"))
    return SmartIrReader(path, file).Read(root["commands"], root);
  // Home Assistant keeps the codes of a device so.
  if (root.is_object() && root.contains("data") && IsCodeTree(text))
    return SmartIrReader(path, file).Read(root["data"], root);
  FileReading(path, file)
      .Complain(0, root.is_object() ? R"(found no "commands", expected a tree of codes)"
                                    : "found " + why + ", expected an object with \"commands\"");
}

bool IsSmartIr(std::string_view text) {
  const std::string_view trimmed = Trimmed(text);
  if (trimmed.starts_with('{')) {
    return IsCodeTree(text) || text.find("\"commands\"") != std::string_view::npos ||
           text.find("\"supportedController\"") != std::string_view::npos;
  }
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    line = Trimmed(line);
    if (line.empty() || line.front() == '#') continue;
    return LooksBroadlink(LastWord(line)) || !JoinedBytes(line).empty();
  }
  return false;
}

/// Names with a slash become a tree again.
/// @return the name that the code got
std::string PutCode(Json& tree, std::string_view name, std::string code) {
  Json* node = &tree;
  constexpr std::size_t kDeepestTree = 20;
  for (std::size_t depth = 0; depth < kDeepestTree; ++depth) {
    const std::size_t slash = name.find('/');
    if (slash == std::string_view::npos || slash == 0 || slash + 1 == name.size()) break;
    Json& child = (*node)[std::string(name.substr(0, slash))];
    if (!child.is_null() && !child.is_object()) break;
    node = &child;
    name.remove_prefix(slash + 1);
  }
  std::string free(name);
  for (int number = 2; node->contains(free); ++number)
    free = std::string(name) + " (" + std::to_string(number) + ')';
  (*node)[free] = std::move(code);
  return free;
}

std::string WriteSmartIr(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  Json root = {{"manufacturer", remotes.empty() ? std::string() : remotes.front().Name},
               {"supportedModels", Json::array()},
               {"supportedController", "Broadlink"},
               {"commandsEncoding", "Base64"},
               {"commands", Json::object()}};
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Coded && key.Lengths.empty()) continue;
      if (key.Carrier && *key.Carrier != kUsualCarrier)
        TellOnce(told, "the format keeps no carrier; the device sends 38000 Hz");
      TellRepeat(told, key);
      const std::string name = NameFor(key, number);
      const std::string put = PutCode(root["commands"], name, BroadlinkText(key));
      if (!name.ends_with(put))
        TellOnce(told, "a second key of the name " + Quoted(name) + " is written as " + Quoted(put));
    }
  }
  if (remotes.size() > 1) TellOnce(told, "the format keeps one remote a file; all keys are written as one");
  return root.dump(2, ' ', false, nlohmann::detail::error_handler_t::replace) + '\n';
}

}  // namespace

const RemoteFormat kSmartIrFormat = {"smartir", "SmartIR's JSON, and Broadlink codes in base64 or hex",
                                     IsSmartIr, ReadSmartIr, WriteSmartIr};

}  // namespace keplo::trade
