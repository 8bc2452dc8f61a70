#include "formats/trade/keymap_writer.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "formats/families.h"
#include "formats/pulse_text.h"
#include "formats/trade/json_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/scancode.h"

namespace keplo::trade {

namespace {

std::string TomlText(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : Utf8Text(text)) {
    if (c == '"' || c == '\\') quoted += '\\';
    const auto code = static_cast<unsigned char>(c);
    quoted += code < 0x20 || code == 0x7F ? "\\u" + HexText(code, 4) : std::string(1, c);
  }
  return quoted + '"';
}

/// Keys of one protocol, or raw ones.
struct KeymapSection {
  std::string Head;
  std::set<std::string> Codes;
  std::string Rows;
};

/// Whether a section can say it, which has one length for all marks of digits.
bool IsPulseDistance(const Coding& code) {
  return code.Line == LineCode::Distance && code.HasSync() &&
         10 * std::abs(code.Zero.Mark - code.One.Mark) <= code.Zero.Mark;
}

class KeymapWriter {
 public:
  explicit KeymapWriter(std::vector<Complaint>& told) : told_(told) {}

  std::string Write(const std::vector<Remote>& remotes) {
    std::size_t number = 0;
    for (const Remote& remote : remotes) {
      for (const RemoteKey& key : remote.Keys) {
        ++number;
        if (key.Coded || !key.Lengths.empty()) Put(key, NameFor(key, number));
      }
      End(remote.Name);
    }
    return text_;
  }

 private:
  void Put(const RemoteKey& key, const std::string& name) {
    const std::optional<Scancode> code = ScancodeOf(key);
    if (code) {
      const std::string protocol(code->Protocol);
      TellOtherCarrier(key, protocol);
      if (HasOwnRepeat(key, *FamilyOf(*key.Coded, key.Carrier))) TellRepeat(told_, key);
      const std::string family = protocol.starts_with("nec")    ? "nec"
                                 : protocol.starts_with("sony") ? "sony"
                                                                : protocol;
      return PutCode(key, name,
                     "protocol = \"" + family + "\"\nvariant = \"" + protocol + "\"\n[protocols.scancodes]\n",
                     code->Value);
    }
    constexpr std::size_t kMostBits = 32;  // which ir-ctl sends; of longer codes it mixes the halves up
    if (key.Coded && IsPulseDistance(key.Coded->Code) && key.Coded->Digits.size() <= kMostBits) {
      TellRepeat(told_, key);
      return PutCode(key, name, DistanceHead(*key.Coded) + CarrierLine(key) + "[protocols.scancodes]\n",
                     HighFirst(key.Coded->Digits));
    }
    TellRepeat(told_, key);
    PutRaw(key, name);
  }

  void TellOtherCarrier(const RemoteKey& key, std::string_view protocol) {
    const int own = protocol.starts_with("rc")     ? 36'000
                    : protocol.starts_with("sony") ? 40'000
                                                   : kUsualCarrier;
    if (key.Carrier && 100 * std::abs(*key.Carrier - own) > own)
      TellOnce(told_, "the format keeps no carrier; a scancode is sent on that of its protocol");
  }

  static std::string CarrierLine(const RemoteKey& key) {
    return CarrierOf(key) == kUsualCarrier ? "" : "carrier = " + std::to_string(CarrierOf(key)) + '\n';
  }

  static std::string DistanceHead(const CodedSignal& signal) {
    const Coding& code = signal.Code;
    const auto line = [](std::string_view name, std::size_t value) {
      return std::string(name) + " = " + std::to_string(value) + '\n';
    };
    const auto us = [](int length) { return static_cast<std::size_t>(length); };
    return "protocol = \"pulse_distance\"\n" + line("bits", signal.Digits.size()) +
           line("header_pulse", us(code.Sync.Mark)) + line("header_space", us(code.Sync.Space)) +
           line("bit_pulse", us(code.Zero.Mark)) + line("bit_0_space", us(code.Zero.Space)) +
           line("bit_1_space", us(code.One.Space)) + line("trailer_pulse", us(code.Tail));
  }

  KeymapSection& SectionOf(const std::string& head) {
    const auto found = std::find_if(sections_.begin(), sections_.end(),
                                    [&](const KeymapSection& section) { return section.Head == head; });
    if (found != sections_.end()) return *found;
    sections_.push_back({head, {}, {}});
    return sections_.back();
  }

  void PutCode(const RemoteKey& key, const std::string& name, const std::string& head, std::uint64_t value) {
    const std::string code = "0x" + Lower(HexText(value, 2));
    KeymapSection& section = SectionOf(head);
    if (!section.Codes.insert(code).second) {
      return TellOfKey(told_, key, name, "another key has its code, and the format keeps one name a code");
    }
    section.Rows += code + " = " + TomlText(name) + '\n';
  }

  void PutRaw(const RemoteKey& key, const std::string& name) {
    PulseTrain press = PressOf(key);
    if (press.size() % 2 == 0) press.pop_back();
    if (std::any_of(press.begin(), press.end(), [](int length) { return length > kLongestKeymapLength; })) {
      // A gap that is too long for the format ends the press.
      const auto gap =
          std::find_if(press.begin(), press.end(), [](int length) { return length > kLongestKeymapLength; });
      if ((gap - press.begin()) % 2 == 0)
        return TellOfKey(told_, key, name, "a mark of it is longer than the format takes");
      press.erase(gap, press.end());
      TellOnce(told_, "the format takes no silence above 65535 us; what stands behind one is left out");
    }
    std::string lengths = OneLineText(press);
    lengths.pop_back();
    SectionOf("protocol = \"raw\"\n" + CarrierLine(key)).Rows +=
        "[[protocols.raw]]\nkeycode = " + TomlText(name) + "\nraw = \"" + lengths + "\"\n";
  }

  void End(const std::string& name) {
    for (const KeymapSection& section : sections_) {
      text_ += "[[protocols]]\nname = " + TomlText(name) + '\n' + section.Head + section.Rows + '\n';
    }
    sections_.clear();
  }

  std::vector<Complaint>& told_;
  std::vector<KeymapSection> sections_;
  std::string text_;
};

}  // namespace

std::string WriteKeymap(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  return KeymapWriter(told).Write(remotes);
}

}  // namespace keplo::trade
