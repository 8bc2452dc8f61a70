#include "formats/trade/esphome_code.h"

#include <array>

#include "formats/families.h"
#include "formats/irp.h"
#include "formats/trade/reading.h"

namespace keplo::trade {

namespace {

/// Numbers of fields; what is none is told in Why.
class FieldNumbers {
 public:
  explicit FieldNumbers(const EsphomeFields& fields) : fields_(fields) {}

  std::uint64_t Of(std::string_view name, std::uint64_t most, std::optional<std::uint64_t> usual = {}) {
    const auto field = fields_.find(name);
    if (field == fields_.end()) {
      if (usual) return *usual;
      Refuse("found no " + std::string(name) + ", expected a number");
      return 0;
    }
    const std::string_view text = field->second;
    const std::optional<std::uint64_t> number = StartsNoCase(text, "0x") ? CNumberOf(text) : Decimal(text);
    if (number && *number <= most) return *number;
    Refuse("found the " + std::string(name) + ' ' + Quoted(text) + ", expected a number up to " +
           std::to_string(most));
    return 0;
  }

  void Refuse(std::string why) {
    if (Why.empty()) Why = std::move(why);
  }

  std::string Why;

 private:
  static std::optional<std::uint64_t> Decimal(std::string_view text) {
    const std::optional<std::int64_t> number = NumberOf(text);
    return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
  }

  const EsphomeFields& fields_;
};

void TakeDigits(std::string_view family, std::string digits, RemoteKey& key) {
  const Family& found = FamilyNamed(family);
  key.Coded = SignalOf(found, std::move(digits));
  key.Carrier = found.Carrier;
}

void TakeEsphomeNec(FieldNumbers& numbers, RemoteKey& key) {
  DigitText digits;
  digits.Low(numbers.Of("address", 0xFFFF), 16);
  const std::uint64_t command = numbers.Of("command", 0xFFFF);
  constexpr std::uint64_t kMostRepeats = 16;
  for (std::uint64_t i = numbers.Of("command_repeats", kMostRepeats, 1); i > 0; --i) digits.Low(command, 16);
  TakeDigits("NEC", digits.Take(), key);
}

void TakeEsphomePioneer(FieldNumbers& numbers, RemoteKey& key) {
  const auto digitsOf = [](std::uint64_t code) {
    return DigitText().High(code >> 8U, 8).High(~code >> 8U, 8).Low(code, 8).Low(~code, 8).Take();
  };
  const std::uint64_t first = numbers.Of("rc_code_1", 0xFFFF), second = numbers.Of("rc_code_2", 0xFFFF, 0);
  TakeDigits("PIONEER", digitsOf(first), key);
  if (second == 0) return;
  const CodedSignal one = *key.Coded;
  key.Coded.reset();
  key.Lengths = FrameLengths(one);
  key.Lengths.push_back(SilenceAfter(one));
  const PulseTrain other = FrameLengths(SignalOf(FamilyNamed("PIONEER"), digitsOf(second)));
  key.Lengths.insert(key.Lengths.end(), other.begin(), other.end());
}

void TakeEsphomeSony(FieldNumbers& numbers, RemoteKey& key) {
  const std::uint64_t bits = numbers.Of("nbits", 20, 12);
  if (bits != 12 && bits != 15 && bits != 20)
    numbers.Refuse("found " + std::to_string(bits) + " bits, expected 12, 15 or 20");
  const std::uint64_t data = numbers.Of("data", (std::uint64_t{1} << bits) - 1);
  TakeDigits("SONY", DigitText().High(data, static_cast<int>(bits)).Take(), key);
}

void TakeEsphomeRc5(FieldNumbers& numbers, RemoteKey& key) {
  const std::uint64_t address = numbers.Of("address", 0x1F), command = numbers.Of("command", 0x7F);
  TakeDigits("RC5",
             DigitText().Low(1, 1).Low(~command >> 6U, 1).Low(0, 1).High(address, 5).High(command, 6).Take(),
             key);
}

void TakeEsphomeSamsung(FieldNumbers& numbers, RemoteKey& key) {
  const std::uint64_t bits = numbers.Of("nbits", 64, 32);
  const std::uint64_t most = bits >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
  TakeDigits("SAMSUNG", DigitText().High(numbers.Of("data", most), static_cast<int>(bits)).Take(), key);
}

void TakeEsphomeJvc(FieldNumbers& numbers, RemoteKey& key) {
  TakeDigits("JVC", DigitText().High(numbers.Of("data", 0xFFFF), 16).Take(), key);
}

void TakeEsphomePanasonic(FieldNumbers& numbers, RemoteKey& key) {
  const std::uint64_t address = numbers.Of("address", 0xFFFF), command = numbers.Of("command", 0xFFFF'FFFF);
  TakeDigits("KASEIKYO", DigitText().High(address, 16).High(command, 32).Take(), key);
}

void TakeEsphomeRc6(FieldNumbers& numbers, RemoteKey& key) {
  const std::uint64_t address = numbers.Of("address", 0xFF), command = numbers.Of("command", 0xFF);
  TakeRc6(0, DigitText().High(address, 8).High(command, 8).Take(), key);
}

struct EsphomeProtocol {
  std::string_view Name;
  void (*Take)(FieldNumbers& numbers, RemoteKey& key);
};

constexpr std::array kEsphome = {
    EsphomeProtocol{"nec", TakeEsphomeNec},
    EsphomeProtocol{"sony", TakeEsphomeSony},
    EsphomeProtocol{"rc5", TakeEsphomeRc5},
    EsphomeProtocol{"samsung", TakeEsphomeSamsung},
    EsphomeProtocol{"jvc", TakeEsphomeJvc},
    EsphomeProtocol{"pioneer", TakeEsphomePioneer},
    EsphomeProtocol{"panasonic", TakeEsphomePanasonic},
    EsphomeProtocol{"rc6", TakeEsphomeRc6},
};

std::string Hex(std::uint64_t value, std::size_t digits) { return "0x" + HexText(value, digits); }

/// The lines of an action: its name and its fields.
struct ActionText {
  std::string Name;
  std::vector<std::pair<std::string, std::string>> Fields;
};

ActionText RawAction(const RemoteKey& key) {
  std::string code = "[";
  const PulseTrain press = PressAndSilence(key);
  for (std::size_t i = 0; i < press.size(); ++i) {
    code += (i == 0 ? "" : i % 2 == 0 ? ", " : ", -") + std::to_string(press[i]);
  }
  return {"raw", {{"carrier_frequency", std::to_string(CarrierOf(key)) + "Hz"}, {"code", code + ']'}}};
}

std::optional<ActionText> DigitAction(const RemoteKey& key) {
  if (!key.Coded) return std::nullopt;
  const Family* const family = FamilyOf(*key.Coded, key.Carrier);
  if (family == nullptr || HasOwnCarrier(key, *family)) return std::nullopt;
  const std::string_view d = key.Coded->Digits;
  if (family->Name == "NEC")
    return ActionText{
        "nec", {{"address", Hex(LowFirst(d.substr(0, 16)), 4)}, {"command", Hex(LowFirst(d.substr(16)), 4)}}};
  if (family->Name == "SONY")
    return ActionText{"sony", {{"data", Hex(HighFirst(d), 3)}, {"nbits", std::to_string(d.size())}}};
  if (family->Name == "RC5") {
    const std::uint64_t command = HighFirst(d.substr(8)) + (d[1] == '0' ? 64 : 0);
    return ActionText{"rc5", {{"address", Hex(HighFirst(d.substr(3, 5)), 2)}, {"command", Hex(command, 2)}}};
  }
  if (family->Name == "SAMSUNG") return ActionText{"samsung", {{"data", Hex(HighFirst(d), 8)}}};
  if (family->Name == "JVC") return ActionText{"jvc", {{"data", Hex(HighFirst(d), 4)}}};
  if (family->Name == "KASEIKYO")
    return ActionText{
        "panasonic",
        {{"address", Hex(HighFirst(d.substr(0, 16)), 4)}, {"command", Hex(HighFirst(d.substr(16)), 8)}}};
  return std::nullopt;
}

}  // namespace

std::string TakeEsphome(std::string_view protocol, const EsphomeFields& fields, RemoteKey& key) {
  for (const EsphomeProtocol& row : kEsphome) {
    if (row.Name != protocol) continue;
    FieldNumbers numbers(fields);
    row.Take(numbers, key);
    return numbers.Why;
  }
  return UnknownProtocol(protocol);
}

std::string EsphomeAction(const RemoteKey& key, std::string_view indent) {
  const ActionText action = DigitAction(key).value_or(RawAction(key));
  std::string text = std::string(indent) + "- remote_transmitter.transmit_" + action.Name + ":\n";
  for (const auto& [name, value] : action.Fields)
    text.append(indent).append("    ").append(name).append(": ").append(value).append("\n");
  return text;
}

}  // namespace keplo::trade
