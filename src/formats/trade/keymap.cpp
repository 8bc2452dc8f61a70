#include <stdexcept>

namespace {

/// The parser asserts what some wrong texts break; here they are refused, in release builds too.
constexpr void RequireTomlReadable(bool holds) {
  if (!holds) throw std::runtime_error("found a text that the parser cannot read");
}

}  // namespace

#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expr) RequireTomlReadable(static_cast<bool>(expr))
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#include <algorithm>

#include "formats/families.h"
#include "formats/trade/keymap_writer.h"
#include "formats/trade/reading.h"
#include "formats/trade/scancode.h"
#include "formats/trade/toml_traps.h"
#include "formats/trade/trade_formats.h"
#include "formats/train_writer.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kLargestToml =
    std::size_t{2} * 1024 * 1024;  // bytes; its tree takes many times as much

std::string TextOf(const toml::table& table, std::string_view name) {
  return table[name].value_or(std::string());
}

/// The kernel's protocol that a section means by a value: the shortest form that it fits.
std::string ProtocolOf(const std::string& protocol, const std::string& variant, std::uint64_t value) {
  const std::string family = PlainProtocol(protocol);
  if (family == "nec" || family == "necx" || family == "nec32") {
    return value <= 0xFFFF ? "nec" : value <= 0xFF'FFFF ? "necx" : "nec32";
  }
  if (!variant.empty()) return variant;
  if (family == "sony") return (value & 0xFF00U) != 0 ? "sony20" : value > 0x1F'FFFF ? "sony15" : "sony12";
  if (family == "rc6") {
    if (value <= 0xFFFF) return "rc6_0";
    if (value <= 0xF'FFFF) return "rc6_6a_20";
    if (value <= 0xFF'FFFF) return "rc6_6a_24";
    return value >> 16U == 0x800F ? "rc6_mce" : "rc6_6a_32";
  }
  return protocol;
}

/// Gives the key the carrier of its section, if there is one.
/// @return what is wrong with it
std::string TakeCarrier(const toml::table& section, RemoteKey& key) {
  if (!section.contains("carrier")) return {};
  const std::optional<std::int64_t> carrier = section["carrier"].value_exact<std::int64_t>();
  if (!carrier || *carrier < 0 || *carrier > kMostCarrier)
    return "found a wrong carrier, expected 0 to " + std::to_string(kMostCarrier) + " Hz";
  key.Carrier = static_cast<int>(*carrier);
  return {};
}

/// Digits as the section itself describes them.
class BitCoding {
 public:
  BitCoding(const toml::table& section, bool distance) : section_(section), distance_(distance) {}

  std::string Take(std::uint64_t value, RemoteKey& key) const {
    if (std::string why = WhyNone(); !why.empty()) return why;
    const auto bits = section_["bits"].value_or(std::int64_t{4});
    if (bits < 1 || bits > 64) return "found " + std::to_string(bits) + " bits, expected 1 to 64";
    if (bits < 64 && value >> static_cast<unsigned>(bits) != 0)
      return "the code has more than the " + std::to_string(bits) + " bits of its section";
    DigitText digits;
    const bool reverse = section_["reverse"].value_or(std::int64_t{0}) != 0;
    const std::string text =
        (reverse ? digits.Low(value, static_cast<int>(bits)) : digits.High(value, static_cast<int>(bits)))
            .Take();
    if (std::string why = TakeCarrier(section_, key); !why.empty()) return why;
    key.Coded = distance_ ? DistanceSignal(text) : std::nullopt;
    if (key.Coded) return {};
    key.Lengths = Frame(text);
    return key.Lengths.empty() ? "the section's lengths are out of range" : "";
  }

 private:
  /// Which of its numbers is none; empty if all are good.
  std::string WhyNone() const {
    for (const std::string_view name :
         {"bits", "header_pulse", "header_space", "bit_pulse", "bit_space", "bit_0_pulse", "bit_1_pulse",
          "bit_0_space", "bit_1_space", "trailer_pulse"}) {
      if (!section_.contains(name)) continue;
      const std::optional<std::int64_t> number = section_[name].value_exact<std::int64_t>();
      if (!number || *number < 0 || *number > kLongestPulse)
        return "found a wrong " + std::string(name) + ", expected a number from 0 to " +
               std::to_string(kLongestPulse);
    }
    if (Bit(false) == Bit(true)) {
      const std::string kind = distance_ ? "space" : "pulse";
      return "found bit_0_" + kind + " and bit_1_" + kind +
             " of the same length, so that nothing tells the digits apart";
    }
    return {};
  }

  int Length(std::string_view name, int usual) const {
    return static_cast<int>(section_[name].value_or(std::int64_t{usual}));
  }

  Pulse Header() const { return {Length("header_pulse", 2125), Length("header_space", 1875)}; }

  Pulse Bit(bool one) const {
    if (distance_)
      return {Length("bit_pulse", 625), one ? Length("bit_1_space", 1625) : Length("bit_0_space", 375)};
    return {one ? Length("bit_1_pulse", 1625) : Length("bit_0_pulse", 375), Length("bit_space", 625)};
  }

  std::optional<CodedSignal> DistanceSignal(std::string digits) const {
    CodedSignal signal;
    Coding& code = signal.Code;
    code.Line = LineCode::Distance;
    code.Sync = Header();
    code.Tail = Length("trailer_pulse", 625);
    code.Zero = Bit(false);
    code.One = Bit(true);
    if (code.Tail == 0 || code.Zero.Mark == 0) return std::nullopt;
    if (code.Zero.Space > code.One.Space) {
      std::swap(code.Zero, code.One);
      for (char& digit : digits) digit = digit == '0' ? '1' : '0';
    }
    code.Unit = UnitOf(code);
    signal.Digits = std::move(digits);
    return signal;
  }

  PulseTrain Frame(std::string_view digits) const {
    TrainWriter train;
    train.Mark(Header().Mark);
    train.Space(Header().Space);
    for (const char digit : digits) {
      train.Mark(Bit(digit == '1').Mark);
      train.Space(Bit(digit == '1').Space);
    }
    train.Mark(Length("trailer_pulse", 625));
    return train.TakeMarkLast();
  }

  const toml::table& section_;
  bool distance_;
};

class KeymapReader {
 public:
  KeymapReader(const std::string& path, RemoteFile& file) : reading_(path, file) {}

  void Read(const toml::table& root) {
    const toml::array* const sections = root["protocols"].as_array();
    if (sections == nullptr) return reading_.Complain(1, "found no [[protocols]], expected one or more");
    for (const toml::node& node : *sections) {
      if (const toml::table* const section = node.as_table()) ReadSection(*section);
    }
  }

 private:
  static int LineOf(const toml::source_region& source) { return static_cast<int>(source.begin.line); }

  void ReadSection(const toml::table& section) {
    const std::string name = TextOf(section, "name");
    reading_.BeginRemote(name.empty() ? NameOfPath(reading_.Path()) : name);
    protocol_ = TextOf(section, "protocol");
    variant_ = TextOf(section, "variant");
    if (Lower(protocol_) == "raw") return ReadRawKeys(section);
    const toml::table* const codes = section["scancodes"].as_table();
    if (codes == nullptr) {
      return reading_.Complain(LineOf(section.source()),
                               "found no [protocols.scancodes] in " +
                                   (name.empty() ? "a section without a name" : Quoted(name)) +
                                   ", expected codes");
    }
    // A table of the library is sorted by its keys, and the file's order is by its lines.
    std::vector<std::pair<const toml::key*, const toml::node*>> rows;
    for (const auto& [code, keycode] : *codes) rows.emplace_back(&code, &keycode);
    std::stable_sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
      return left.first->source().begin.line < right.first->source().begin.line;
    });
    for (const auto& [code, keycode] : rows) ReadScancode(section, *code, *keycode);
  }

  void ReadScancode(const toml::table& section, const toml::key& code, const toml::node& keycode) {
    RemoteKey key;
    key.Line = LineOf(code.source());
    key.Name = keycode.value_or(std::string());
    key.Protocol = protocol_;
    const std::optional<std::uint64_t> value = CNumberOf(code.str());
    std::string why = value ? Take(section, *value, key)
                            : "found " + Quoted(code.str()) + ", expected a scancode such as 0x41";
    if (why.empty()) return reading_.Add(std::move(key));
    reading_.Skip(std::move(key), std::move(why));
  }

  std::string Take(const toml::table& section, std::uint64_t value, RemoteKey& key) const {
    const std::string name = Lower(protocol_);
    if (name == "pulse_distance" || name == "pulse_length")
      return BitCoding(section, name == "pulse_distance").Take(value, key);
    if (name == "unknown" || name == "other" || name == "none") {
      return "the protocol is " + Quoted(name) + ": codes of a device's own driver, without lengths";
    }
    return TakeScancode(ProtocolOf(protocol_, variant_, value), value, key);
  }

  void ReadRawKeys(const toml::table& section) {
    const toml::array* const rows = section["raw"].as_array();
    if (rows == nullptr)
      return reading_.Complain(LineOf(section.source()), "found no \"raw\", expected a list of keys");
    for (const toml::node& node : *rows) {
      const toml::table* const row = node.as_table();
      RemoteKey key;
      key.Line = LineOf(node.source());
      if (row == nullptr) {
        reading_.Skip(std::move(key), "found no table, expected one with \"keycode\" and \"raw\"");
        continue;
      }
      key.Name = TextOf(*row, "keycode");
      if (std::string why = TakeCarrier(section, key); !why.empty()) {
        reading_.Skip(std::move(key), std::move(why));
        continue;
      }
      AddLengths(reading_, std::move(key), ReadRawText(TextOf(*row, "raw")));
    }
  }

  static LengthList ReadRawText(std::string_view text) {
    LengthList lengths;
    for (std::string_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) {
      const bool mark = lengths.Size() % 2 == 0;
      const bool isSigned = word.front() == '+' || word.front() == '-';
      if (isSigned && (word.front() == '+') != mark) {
        lengths.Refuse("found " + Quoted(word) + ", expected a " + (mark ? "mark, +" : "space, -"));
      }
      const std::string_view digits = isSigned ? word.substr(1) : word;
      const std::optional<std::int64_t> length = NumberOf(digits);
      if (length && *length > kLongestKeymapLength) {
        lengths.Refuse("found a length of " + std::string(digits) + ", expected 1 to " +
                       std::to_string(kLongestKeymapLength) + " microseconds");
      }
      lengths.AddWord(digits);
    }
    return lengths;
  }

  FileReading reading_;
  std::string protocol_, variant_;
};

void ReadKeymap(std::string_view text, const std::string& path, RemoteFile& file) {
  if (text.size() > kLargestToml) {
    throw FormatError(path + ": larger than the " + std::to_string(kLargestToml) +
                      " bytes that a keymap may have");
  }
  if (const auto trap = FindTomlTrap(text)) {
    return FileReading(path, file).Complain(trap->Line, std::string(trap->Why));
  }
  try {
    KeymapReader(path, file).Read(toml::parse(text));
  } catch (const toml::parse_error& error) {
    FileReading(path, file)
        .Complain(static_cast<int>(error.source().begin.line),
                  "no TOML: " + std::string(error.description()));
  } catch (const std::runtime_error& error) {
    FileReading(path, file).Complain(0, std::string("no TOML: ") + error.what());
  }
}

/// A header may have blanks within its brackets.
bool IsKeymap(std::string_view text) {
  for (std::size_t at = text.find("[["); at != std::string_view::npos; at = text.find("[[", at + 2)) {
    std::string_view rest = text.substr(at + 2);
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    if (!rest.starts_with("protocols")) continue;
    rest.remove_prefix(std::string_view("protocols").size());
    if (Trimmed(rest.substr(0, rest.find(']'))).empty()) return true;
  }
  return false;
}

}  // namespace

const RemoteFormat kKeymapFormat = {"keymap", "keymaps of ir-ctl and ir-keytable (TOML)", IsKeymap,
                                    ReadKeymap, WriteKeymap};

}  // namespace keplo::trade
