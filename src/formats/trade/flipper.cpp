#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "formats/families.h"
#include "formats/irp.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kMostFlipperLengths = 1024;

/// A protocol of the format: how its address and command lie in a frame.
struct FlipperProtocol {
  std::string_view Name;
  std::string_view Family;
  std::string (*Digits)(std::uint32_t address, std::uint32_t command);
  unsigned AddressBits, CommandBits;
};

std::string NecBytes(std::uint32_t a, std::uint32_t c) {
  return DigitText().Low(a, 8).Low(~a, 8).Low(c, 8).Low(~c, 8).Take();
}
std::string NecWords(std::uint32_t a, std::uint32_t c) { return DigitText().Low(a, 16).Low(c, 16).Take(); }
std::string Nec42(std::uint32_t a, std::uint32_t c) {
  return DigitText().Low(a, 13).Low(~a, 13).Low(c, 8).Low(~c, 8).Take();
}
std::string Nec42Words(std::uint32_t a, std::uint32_t c) { return DigitText().Low(a, 26).Low(c, 16).Take(); }
std::string SamsungBytes(std::uint32_t a, std::uint32_t c) {
  return DigitText().Low(a, 8).Low(a, 8).Low(c, 8).Low(~c, 8).Take();
}
std::string Sirc12(std::uint32_t a, std::uint32_t c) { return DigitText().Low(c, 7).Low(a, 5).Take(); }
std::string Sirc15(std::uint32_t a, std::uint32_t c) { return DigitText().Low(c, 7).Low(a, 8).Take(); }
std::string Sirc20(std::uint32_t a, std::uint32_t c) { return DigitText().Low(c, 7).Low(a, 13).Take(); }
std::string Rc5(std::uint32_t a, std::uint32_t c) {
  return DigitText().High(6, 3).High(a, 5).High(c, 6).Take();
}
std::string Rc5x(std::uint32_t a, std::uint32_t c) {
  return DigitText().High(4, 3).High(a, 5).High(c, 6).Take();
}
std::string RcaNibbles(std::uint32_t a, std::uint32_t c) {
  return DigitText().Low(a, 4).Low(c, 8).Low(~a, 4).Low(~c, 8).Take();
}

std::string KaseikyoBytes(std::uint32_t a, std::uint32_t c) {
  const std::uint32_t id = a >> 24U & 3U, vendor = a >> 8U & 0xFFFFU, genre1 = a >> 4U & 0xFU,
                      genre2 = a & 0xFU;
  std::uint32_t parity = vendor ^ vendor >> 8U;
  parity = (parity ^ parity >> 4U) & 0xFU;
  const std::array<std::uint32_t, 3> checked = {genre2 | (c & 0xFU) << 4U, id << 6U | (c >> 4U & 0x3FU),
                                                parity | genre1 << 4U};
  return DigitText()
      .Low(vendor, 16)
      .Low(checked[2], 8)
      .Low(checked[0], 8)
      .Low(checked[1], 8)
      .Low(checked[0] ^ checked[1] ^ checked[2], 8)
      .Take();
}

// The ones that compute part of their digits stand before those that do not.
constexpr std::array kProtocols = {
    FlipperProtocol{"NEC", "NEC", NecBytes, 8, 8},
    FlipperProtocol{"NECext", "NEC", NecWords, 16, 16},
    FlipperProtocol{"NEC42", "NEC42", Nec42, 13, 8},
    FlipperProtocol{"NEC42ext", "NEC42", Nec42Words, 26, 16},
    FlipperProtocol{"Pioneer", "PIONEER", NecBytes, 8, 8},
    FlipperProtocol{"Samsung32", "SAMSUNG", SamsungBytes, 8, 8},
    FlipperProtocol{"SIRC", "SONY", Sirc12, 5, 7},
    FlipperProtocol{"SIRC15", "SONY", Sirc15, 8, 7},
    FlipperProtocol{"SIRC20", "SONY", Sirc20, 13, 7},
    FlipperProtocol{"RC5", "RC5", Rc5, 5, 6},
    FlipperProtocol{"RC5X", "RC5", Rc5x, 5, 7},
    FlipperProtocol{"RCA", "RCA", RcaNibbles, 4, 8},
    FlipperProtocol{"Kaseikyo", "KASEIKYO", KaseikyoBytes, 26, 10},
};

/// The lines of a key.
struct FlipperKey {
  RemoteKey Key;
  std::string_view Type, Protocol, Address, Command, Frequency, Data;
};

/// Bytes in hex, the lowest first; files also have three of them.
std::optional<std::uint32_t> LittleEndian(std::string_view text) {
  std::uint32_t value = 0;
  int bytes = 0;
  for (std::string_view word = TakeWord(text); !word.empty(); word = TakeWord(text), ++bytes) {
    const std::optional<std::uint8_t> byte = HexByteOf(word);
    if (!byte || bytes == 4) return std::nullopt;
    value |= static_cast<std::uint32_t>(*byte) << 8U * static_cast<unsigned>(bytes);
  }
  if (bytes == 0) return std::nullopt;
  return value;
}

/// The format's own program refuses what a protocol has no room for.
std::string WhyTooLarge(std::string_view field, std::uint32_t value, unsigned bits) {
  if (value >> bits == 0) return {};
  return "found " + std::string(field) + ' ' + HexText(value) +
         " (lowest byte first in the file), expected 0 to " + HexText((1U << bits) - 1);
}

class FlipperReader {
 public:
  FlipperReader(const std::string& path, RemoteFile& file) : reading_(path, file) {}

  void Read(std::string_view text) {
    Lines lines(text);
    std::string_view line;
    while (lines.Next(line)) ReadLine(Trimmed(line), lines.Number());
    EndKey();
  }

 private:
  void ReadLine(std::string_view line, int number) {
    if (line.empty() || line.front() == '#') return;
    const std::size_t colon = line.find(':');
    const std::string_view word = Trimmed(line.substr(0, colon));
    if (colon == std::string_view::npos) {
      reading_.Complain(number, "found " + Quoted(line) + ", expected \"word: value\"");
      return;
    }
    const std::string_view value = Trimmed(line.substr(colon + 1));
    if (word == "name") {
      EndKey();
      key_.Key.Name = value;
      key_.Key.Line = number;
      inKey_ = true;
    } else if (inKey_) {
      TakeValue(word, value);
    }
  }

  void TakeValue(std::string_view word, std::string_view value) {
    if (word == "type") key_.Type = value;
    if (word == "protocol") key_.Protocol = value;
    if (word == "address") key_.Address = value;
    if (word == "command") key_.Command = value;
    if (word == "frequency") key_.Frequency = value;
    if (word == "data") key_.Data = value;
  }

  void EndKey() {
    if (!inKey_) return;
    inKey_ = false;
    FlipperKey key = std::exchange(key_, {});
    if (key.Type == "raw") {
      AddRaw(std::move(key));
    } else if (key.Type == "parsed") {
      AddParsed(std::move(key));
    } else {
      const std::string type = key.Type.empty() ? "no type" : "the type " + Quoted(key.Type);
      reading_.Skip(std::move(key.Key), "found " + type + R"(, expected "raw" or "parsed")");
    }
  }

  void AddRaw(FlipperKey key) {
    const std::optional<std::int64_t> carrier = NumberOf(key.Frequency);
    if (!key.Frequency.empty() && (!carrier || *carrier < kLeastCarrier || *carrier > kMostCarrier)) {
      reading_.Skip(std::move(key.Key), "found the frequency " + Quoted(key.Frequency) + ", expected " +
                                            std::to_string(kLeastCarrier) + " to " +
                                            std::to_string(kMostCarrier) + " Hz");
      return;
    }
    if (carrier) key.Key.Carrier = static_cast<int>(*carrier);
    LengthList lengths;
    for (std::string_view word = TakeWord(key.Data); !word.empty(); word = TakeWord(key.Data)) {
      lengths.AddWord(word);
    }
    AddLengths(reading_, std::move(key.Key), std::move(lengths));
  }

  static std::string WhyOutside(std::uint32_t address, unsigned addressBits, std::uint32_t command,
                                unsigned commandBits) {
    std::string why = WhyTooLarge("the address", address, addressBits);
    return why.empty() ? WhyTooLarge("the command", command, commandBits) : why;
  }

  void AddParsed(FlipperKey key) {
    key.Key.Protocol = key.Protocol;
    const std::optional<std::uint32_t> address = LittleEndian(key.Address);
    const std::optional<std::uint32_t> command = LittleEndian(key.Command);
    if (!address || !command) {
      reading_.Skip(std::move(key.Key), "found " + Quoted(address ? key.Command : key.Address) +
                                            ", expected up to four bytes in hex such as \"07 00 00 00\"");
      return;
    }
    std::string why = UnknownProtocol(key.Protocol);
    if (SameNoCase(key.Protocol, "RC6")) {
      why = WhyOutside(*address, 8, *command, 8);
      if (why.empty()) TakeRc6(0, DigitText().High(*address, 8).High(*command, 8).Take(), key.Key);
    }
    for (const FlipperProtocol& protocol : kProtocols) {
      if (!SameNoCase(protocol.Name, key.Protocol)) continue;
      why = WhyOutside(*address, protocol.AddressBits, *command, protocol.CommandBits);
      if (!why.empty()) break;
      const Family& family = FamilyNamed(protocol.Family);
      key.Key.Coded = SignalOf(family, protocol.Digits(*address, *command));
      key.Key.Carrier = family.Carrier;
    }
    if (why.empty()) return reading_.Add(std::move(key.Key));
    reading_.Skip(std::move(key.Key), std::move(why));
  }

  FileReading reading_;
  FlipperKey key_;
  bool inKey_ = false;
};

void ReadFlipper(std::string_view text, const std::string& path, RemoteFile& file) {
  FlipperReader(path, file).Read(text);
}

bool IsFlipper(std::string_view text) {
  if (text.starts_with("Filetype: IR")) return true;
  Lines lines(text);
  std::string_view line;
  bool named = false;
  while (lines.Next(line)) {
    if (line.starts_with("name:")) named = true;
    if (named && (line.starts_with("type: raw") || line.starts_with("type: parsed"))) return true;
  }
  return false;
}

struct FlipperFields {
  std::uint32_t Address = 0, Command = 0;
};

std::uint32_t Low(std::string_view digits, std::size_t first, std::size_t count) {
  return static_cast<std::uint32_t>(LowFirst(digits.substr(first, count)));
}

/// What address and command of a protocol the digits would be of.
FlipperFields GuessFields(const FlipperProtocol& protocol, std::string_view d) {
  if (protocol.Digits == NecWords) return {Low(d, 0, 16), Low(d, 16, 16)};
  if (protocol.Digits == Nec42Words) return {Low(d, 0, 26), Low(d, 26, 16)};
  if (protocol.Digits == Nec42) return {Low(d, 0, 13), Low(d, 26, 8)};
  if (protocol.Family == "SONY") return {Low(d, 7, d.size() - 7), Low(d, 0, 7)};
  if (protocol.Family == "RC5") {
    return {static_cast<std::uint32_t>(HighFirst(d.substr(3, 5))),
            static_cast<std::uint32_t>(HighFirst(d.substr(8)))};
  }
  if (protocol.Family == "RCA") return {Low(d, 0, 4), Low(d, 4, 8)};
  if (protocol.Family == "KASEIKYO") {
    const std::uint32_t genre1 = Low(d, 20, 4), genre2 = Low(d, 24, 4), id = Low(d, 38, 2);
    return {id << 24U | Low(d, 0, 16) << 8U | genre1 << 4U | genre2, Low(d, 28, 10)};
  }
  return {Low(d, 0, 8), Low(d, 16, 8)};
}

void WriteBytes(std::string& text, std::string_view word, std::uint32_t value) {
  text += std::string(word) + ':';
  for (int byte = 0; byte < 4; ++byte, value >>= 8U) text += ' ' + HexText(value & 0xFFU, 2);
  text += '\n';
}

bool WriteParsed(const RemoteKey& key, std::string& text, std::vector<Complaint>& told) {
  if (!key.Coded) return false;
  const Family* const family = FamilyOf(*key.Coded, key.Carrier);
  if (family == nullptr) return false;
  // A carrier of its own is said by lengths only.
  if (HasOwnCarrier(key, *family)) return false;
  for (const FlipperProtocol& protocol : kProtocols) {
    const bool asNec = protocol.Family == "NEC" && family->Name == "NEC2";
    if (protocol.Family != family->Name && !asNec) continue;
    const FlipperFields fields = GuessFields(protocol, key.Coded->Digits);
    if (protocol.Digits(fields.Address, fields.Command) != key.Coded->Digits) continue;
    if (asNec) TellOnce(told, "the format repeats NEC by its short repeat, not by the frame");
    if (!asNec && HasOwnRepeat(key, *family))
      TellOnce(told, "the format keeps no way to repeat but that of the protocol");
    text += "type: parsed\nprotocol: " + std::string(protocol.Name) + '\n';
    WriteBytes(text, "address", fields.Address);
    WriteBytes(text, "command", fields.Command);
    return true;
  }
  return false;
}

bool WriteRaw(const RemoteKey& key, const std::string& name, std::string& text,
              std::vector<Complaint>& told) {
  const PulseTrain press = PressAndSilence(key);
  if (press.size() > kMostFlipperLengths) {
    TellOfKey(told, key, name,
              "it has " + std::to_string(press.size()) + " lengths, of which the format takes up to " +
                  std::to_string(kMostFlipperLengths));
    return false;
  }
  TellRepeat(told, key);
  int carrier = CarrierOf(key);
  if (carrier == 0) TellOnce(told, "the format has no signal without a carrier; 38000 Hz is written");
  if (carrier > 0 && carrier < kLeastCarrier)
    TellOnce(told,
             "the format has no carrier below " + std::to_string(kLeastCarrier) + " Hz; 38000 Hz is written");
  if (carrier < kLeastCarrier) carrier = kUsualCarrier;
  text += "type: raw\nfrequency: " + std::to_string(carrier) + "\nduty_cycle: 0.330000\ndata:";
  for (const int length : press) text += ' ' + std::to_string(length);
  text += '\n';
  return true;
}

std::string WriteFlipper(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  std::string text = "Filetype: IR signals file\nVersion: 1\n";
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    if (!remote.Name.empty()) text += "#\n# " + OnOneLine(remote.Name) + '\n';
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Coded && key.Lengths.empty()) continue;
      const std::string name = NameFor(key, number);
      std::string lines = "#\nname: " + OnOneLine(name) + '\n';
      if (WriteParsed(key, lines, told) || WriteRaw(key, name, lines, told)) text += lines;
    }
  }
  if (remotes.size() > 1) TellOnce(told, "the format keeps one remote a file; all keys are written as one");
  return text;
}

}  // namespace

const RemoteFormat kFlipperFormat = {"flipper", "Flipper .ir files and libraries", IsFlipper, ReadFlipper,
                                     WriteFlipper};

}  // namespace keplo::trade
