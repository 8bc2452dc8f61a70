#include <algorithm>
#include <array>

#include "formats/families.h"
#include "formats/irp.h"
#include "formats/trade/json_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/tasmota_raw.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

struct TasmotaProtocol {
  std::string_view Name, Family;
  int LeastBits, MostBits;
};

constexpr std::array kTasmota = {
    TasmotaProtocol{"NEC", "NEC", 32, 32},
    TasmotaProtocol{"NEC_LIKE", "NEC", 32, 32},
    TasmotaProtocol{"NEC (non-strict)", "NEC", 32, 32},
    TasmotaProtocol{"SONY", "SONY", 12, 20},
    TasmotaProtocol{"SAMSUNG", "SAMSUNG", 32, 32},
    TasmotaProtocol{"JVC", "JVC", 16, 16},
    TasmotaProtocol{"PIONEER", "PIONEER", 32, 32},
    TasmotaProtocol{"PANASONIC", "KASEIKYO", 48, 48},
};

/// A code that came as text or as a number.
std::optional<std::uint64_t> ValueOf(const Json& value) {
  if (value.is_number_unsigned()) return value.get<std::uint64_t>();
  if (!value.is_string()) return std::nullopt;
  const auto& text = value.get_ref<const std::string&>();
  // A decimal number may not be read as octal.
  if (StartsNoCase(text, "0x")) return CNumberOf(text);
  const std::optional<std::int64_t> number = NumberOf(text);
  return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
}

/// The code of an object; without "Data" that of "DataLSB", in which the bits of each byte are turned.
std::optional<std::uint64_t> DataOf(const Json& object) {
  if (object.contains("Data")) return ValueOf(object["Data"]);
  const std::optional<std::uint64_t> turned = ValueOf(object["DataLSB"]);
  if (!turned) return std::nullopt;
  std::uint64_t data = 0;
  for (unsigned bit = 0; bit < 64; ++bit) data |= (*turned >> bit & 1U) << (bit ^ 7U);
  return data;
}

void TakeRaw(const Json& raw, LengthList& lengths) {
  if (raw.is_string()) return ReadCompact(raw.get_ref<const std::string&>(), lengths);
  for (const Json& part : raw) {
    if (part.is_string()) {
      ReadCompact(part.get_ref<const std::string&>(), lengths);
    } else if (part.is_number_integer()) {
      lengths.Add(part.get<std::int64_t>());
    } else {
      lengths.Refuse("found " + Shown(part) + ", expected lengths in numbers or letters");
    }
  }
}

std::string TakeTasmotaRc5(std::string_view digits, bool extended, RemoteKey& key) {
  if (digits.size() != (extended ? 13U : 12U)) {
    return "found " + std::to_string(digits.size()) + " bits, expected " + (extended ? "13" : "12");
  }
  const bool second = !extended || digits.front() == '0';
  const Family& family = FamilyNamed("RC5");
  key.Coded = SignalOf(
      family, std::string("1") + (second ? '1' : '0') + '0' + std::string(digits.substr(extended ? 2 : 1)));
  key.Carrier = family.Carrier;
  return {};
}

std::string TakeTasmotaRc6(std::string_view digits, RemoteKey& key) {
  constexpr std::size_t kHead = 4;  // the mode and the toggle
  if (digits.size() != 20 && digits.size() != 36) {
    return "found " + std::to_string(digits.size()) + " bits, expected 20 or 36";
  }
  TakeRc6(static_cast<int>(HighFirst(digits.substr(0, 3))), digits.substr(kHead), key);
  return {};
}

/// Pioneer's remotes may send two codes in a row.
std::string TakeTwoPioneer(std::string_view digits, RemoteKey& key) {
  const Family& family = FamilyNamed("PIONEER");
  key.Carrier = family.Carrier;
  const std::string first(digits.substr(0, 32)), second(digits.substr(32));
  if (first == second || HighFirst(second) == 0) {
    key.Coded = SignalOf(family, first);
    return {};
  }
  const CodedSignal one = SignalOf(family, first);
  key.Lengths = FrameLengths(one);
  key.Lengths.push_back(SilenceAfter(one));
  const PulseTrain other = FrameLengths(SignalOf(family, second));
  key.Lengths.insert(key.Lengths.end(), other.begin(), other.end());
  return {};
}

std::string TakeCode(const std::string& name, int bits, std::uint64_t data, RemoteKey& key) {
  if (SameNoCase(name, "PANASONIC") && bits != 48) {
    // On sending the address stands in the place of the bits.
    data = static_cast<std::uint64_t>(bits) << 32U | (data & 0xFFFF'FFFFU);
    bits = 48;
  }
  if (bits < 1 || bits > 64) return "found " + std::to_string(bits) + " bits, expected 1 to 64";
  if (bits < 64 && data >> static_cast<unsigned>(bits) != 0) {
    return "found data of more than the " + std::to_string(bits) + " bits that it counts";
  }
  const std::string digits = DigitText().High(data, bits).Take();
  if (SameNoCase(name, "RC5") || SameNoCase(name, "RC5X"))
    return TakeTasmotaRc5(digits, SameNoCase(name, "RC5X"), key);
  if (SameNoCase(name, "RC6")) return TakeTasmotaRc6(digits, key);
  if (SameNoCase(name, "PIONEER") && bits == 64) return TakeTwoPioneer(digits, key);
  const auto* const row =
      std::find_if(kTasmota.begin(), kTasmota.end(),
                   [&](const TasmotaProtocol& protocol) { return SameNoCase(protocol.Name, name); });
  if (row == kTasmota.end()) return UnknownProtocol(name);
  const bool fits = bits >= row->LeastBits && bits <= row->MostBits &&
                    (row->Family != "SONY" || bits == 12 || bits == 15 || bits == 20);
  if (!fits) return "found " + std::to_string(bits) + " bits, which " + name + " has not";
  const Family& family = FamilyNamed(row->Family);
  key.Coded = SignalOf(family, digits);
  key.Carrier = family.Carrier;
  return {};
}

/// An object whose names are written as the device tells them; it reads them in any case.
Json WithKnownNames(const Json& object) {
  constexpr std::array<std::string_view, 9> kNames = {"IrReceived", "IRSend",  "IRHVAC", "Vendor", "Protocol",
                                                      "Bits",       "RawData", "Data",   "DataLSB"};
  Json named = Json::object();
  for (const auto& [name, value] : object.items()) {
    const auto* const known =
        std::find_if(kNames.begin(), kNames.end(),
                     [&given = name](std::string_view other) { return SameNoCase(other, given); });
    named[known == kNames.end() ? name : std::string(*known)] = value;
  }
  return named;
}

void TakeObject(const Json& given, int line, FileReading& reading) {
  if (!given.is_object())
    return reading.Complain(line, "found no object, expected one with \"Protocol\" or \"RawData\"");
  const Json object = WithKnownNames(given);
  for (const char* name : {"IrReceived", "IRSend"}) {
    if (object.contains(name)) return TakeObject(object[name], line, reading);
  }
  RemoteKey key;
  key.Line = line;
  if (object.contains("IRHVAC") ||
      (object.contains("Vendor") && !object.contains("Data") && !object.contains("DataLSB"))) {
    return reading.Skip(std::move(key), "it is the state of an air conditioner, not a code");
  }
  const std::string protocol = object.contains("Protocol") && object["Protocol"].is_string()
                                   ? object["Protocol"].get<std::string>()
                                   : "";
  if (!protocol.empty()) key.Protocol = protocol;
  std::string why = R"(found neither "Data" nor "RawData")";
  if (SameNoCase(protocol, "UNKNOWN")) {
    why = "the protocol is UNKNOWN, and there are no lengths";
  } else if (object.contains("Data") || object.contains("DataLSB")) {
    const std::optional<std::uint64_t> data = DataOf(object);
    const Json bits = object.value("Bits", Json());
    const std::optional<std::uint64_t> count = ValueOf(bits);
    why = data && count && *count <= 0xFFFF
              ? TakeCode(protocol, static_cast<int>(*count), *data, key)
              : "found the Data " + Shown(object.value("Data", object.value("DataLSB", Json()))) +
                    " and the Bits " + Shown(bits) + ", expected a code of up to 64 bits, and how many";
  }
  if (!object.contains("RawData")) {
    return why.empty() ? reading.Add(std::move(key)) : reading.Skip(std::move(key), std::move(why));
  }
  LengthList lengths;
  TakeRaw(object["RawData"], lengths);
  if (!lengths.Fault().empty() && key.Coded) return reading.Add(std::move(key));
  if (lengths.Size() == 0 && lengths.Fault().empty() && !why.empty())
    return reading.Skip(std::move(key), std::move(why));
  AddLengths(reading, std::move(key), std::move(lengths));
}

/// "IRSend 38000,9000,4500,..." or "IRSend 0,+8570-4240...": a carrier, 0 for the usual one, and lengths.
void TakeCommand(std::string_view rest, int line, FileReading& reading) {
  RemoteKey key;
  key.Line = line;
  if (StartsNoCase(rest, "raw,")) rest.remove_prefix(4);
  const std::size_t comma = rest.find(',');
  const std::optional<std::int64_t> carrier = NumberOf(Trimmed(rest.substr(0, comma)));
  if (comma == std::string_view::npos || !carrier || *carrier < 0 || *carrier > kMostCarrier) {
    return reading.Skip(std::move(key),
                        "found " + Quoted(rest) + ", expected a carrier in Hz and lengths behind it");
  }
  key.Carrier = *carrier == 0 ? kUsualCarrier : static_cast<int>(*carrier);
  rest = Trimmed(rest.substr(comma + 1));
  LengthList lengths;
  if (rest.starts_with('+') || rest.starts_with('-')) {
    ReadCompact(rest, lengths);
  } else {
    while (!rest.empty()) {
      const std::size_t end = rest.find(',');
      lengths.AddWord(Trimmed(rest.substr(0, end)));
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
  }
  AddLengths(reading, std::move(key), std::move(lengths));
}

/// Where the word IRSend ends in a line; npos without it.
std::size_t AfterCommand(std::string_view line) {
  const std::string lower = Lower(line);
  const std::size_t place = lower.find("irsend");
  return place == std::string::npos ? place : place + 6;
}

void ReadTasmotaLine(std::string_view line, int number, FileReading& reading) {
  const std::size_t brace = line.find('{');
  if (brace == std::string_view::npos) {
    const std::size_t after = AfterCommand(line);
    if (after != std::string_view::npos) return TakeCommand(Trimmed(line.substr(after)), number, reading);
    return reading.Complain(number, "found " + Quoted(line) + ", expected an object or a line of IRSend");
  }
  std::string why;
  const Json object = ParseJson(line.substr(brace, line.rfind('}') - brace + 1), why);
  if (object.is_discarded()) {
    RemoteKey key;
    key.Line = number;
    return reading.Skip(std::move(key), "found " + why + ", expected an object in this line");
  }
  TakeObject(object, number, reading);
}

/// Whether a text begins with an object or a list that may go on over further lines.
bool BeginsTree(std::string_view text) {
  return text.starts_with('[') || (text.starts_with('{') && Trimmed(text.substr(0, text.find('\n'))) == "{");
}

/// An object a line, as a log has them; or one over several lines, or a list of them.
void ReadTasmota(std::string_view text, const std::string& path, RemoteFile& file) {
  FileReading reading(path, file);
  std::string why;
  const std::string_view whole = Trimmed(text);
  if (BeginsTree(whole)) {
    const Json json = ParseJson(whole, why);
    if (json.is_object()) return TakeObject(json, 1, reading);
    if (json.is_array()) {
      for (const Json& object : json) TakeObject(object, 0, reading);
      return;
    }
  }
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    if (!Trimmed(line).empty()) ReadTasmotaLine(Trimmed(line), lines.Number(), reading);
  }
}

/// Whether a text has the fields of an object.
/// @param command how the command stands in it
bool HasFields(std::string_view text, const char* command) {
  const std::string lower = Lower(text);
  const auto has = [&](const char* name) { return lower.find(name) != std::string::npos; };
  return (has("\"protocol\"") && has("\"data\"")) || has("\"rawdata\"") || has(command);
}

bool IsTasmota(std::string_view text) {
  if (text.find("\"IrReceived\"") != std::string_view::npos) return true;
  if (BeginsTree(Trimmed(text))) return HasFields(text, "\"irsend\"");
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    if (StartsNoCase(Trimmed(line), "irsend")) return true;
    if (line.find('{') != std::string_view::npos && HasFields(line, "irsend")) return true;
  }
  return false;
}

/// Protocol, bits and data of a code; empty if the format has no name for it.
std::string CodeText(const RemoteKey& key) {
  if (!key.Coded) return {};
  const Family* const family = FamilyOf(*key.Coded, key.Carrier);
  if (family == nullptr) return {};
  std::string digits = key.Coded->Digits;
  std::string_view name;
  if (family->Name == "RC5") {
    const bool extended = digits[1] == '0';
    name = extended ? "RC5X" : "RC5";
    digits = (extended ? "10" : "0") + digits.substr(3);
  } else {
    const auto* const row =
        std::find_if(kTasmota.begin(), kTasmota.end(),
                     [&](const TasmotaProtocol& protocol) { return protocol.Family == family->Name; });
    if (row == kTasmota.end()) return {};
    name = row->Name;
  }
  return "\"Protocol\":\"" + std::string(name) + "\",\"Bits\":" + std::to_string(digits.size()) +
         ",\"Data\":\"0x" + HexText(HighFirst(digits)) + '"';
}

std::string WriteTasmota(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  std::string text;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      if (!key.Coded && key.Lengths.empty()) continue;
      if (key.Name) TellOnce(told, "the format keeps no names");
      std::string code = CodeText(key);
      const Family* const family = key.Coded ? FamilyOf(*key.Coded, key.Carrier) : nullptr;
      if (!code.empty() && HasOwnCarrier(key, *family))
        TellOnce(told, "the format keeps no carrier; a protocol is sent on its own");
      if (!code.empty() && HasOwnRepeat(key, *family)) TellRepeat(told, key);
      if (code.empty()) {
        TellOnce(told, "the format keeps no carrier with lengths; it is written for 38000 Hz");
        TellRepeat(told, key);
        code = R"("Protocol":"UNKNOWN","Bits":0,"Data":"0x0","RawData":")" +
               CompactText(PressAndSilence(key)) + '"';
      }
      text += "{\"IrReceived\":{" + code + ",\"Repeat\":0}}\n";
    }
  }
  return text;
}

}  // namespace

const RemoteFormat kTasmotaFormat = {"tasmota", "Tasmota's IrReceived and IRSend", IsTasmota, ReadTasmota,
                                     WriteTasmota};

}  // namespace keplo::trade
