#include "formats/irp.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "formats/families.h"
#include "formats/train_writer.h"

namespace keplo {

namespace {

constexpr int kBiphaseHalf = 889;  // microseconds, of RC5

void WriteBiphase(TrainWriter& train, std::string_view digits, int half, bool oneIsMarkFirst) {
  for (const char digit : digits) {
    const bool markFirst = (digit == '1') == oneIsMarkFirst;
    if (markFirst) train.Mark(half);
    train.Space(half);
    if (!markFirst) train.Mark(half);
  }
}

std::string Rc5Digits(const ProtocolValues& v) {
  return DigitText().Low(1, 1).Low((v.F >> 6 & 1) == 0 ? 1 : 0, 1).Low(0, 1).High(v.D, 5).High(v.F, 6).Take();
}

long SubOr(const ProtocolValues& v, long other) { return v.S < 0 ? other : v.S; }

std::string NecDigits(const ProtocolValues& v) {
  return DigitText().Low(v.D, 8).Low(SubOr(v, ~v.D), 8).Low(v.F, 8).Low(~v.F, 8).Take();
}

std::string NecFullDigits(const ProtocolValues& v) {
  return DigitText().Low(v.D, 8).Low(SubOr(v, ~v.D), 8).Low(v.F, 16).Take();
}

/// Both bytes of the address are the same where there is no second.
std::string SamsungDigits(const ProtocolValues& v) {
  return DigitText().Low(v.D, 8).Low(SubOr(v, v.D), 8).Low(v.F, 8).Low(~v.F, 8).Take();
}

std::string TivoDigits(const ProtocolValues& v) {
  return DigitText().Low(v.D, 8).Low(SubOr(v, 48), 8).Low(v.F, 8).Low(0, 4).Low(~v.F >> 4, 4).Take();
}

std::string AppleDigits(const ProtocolValues& v) {
  const auto ones = __builtin_popcountl(static_cast<unsigned long>(v.F)) +
                    __builtin_popcountl(static_cast<unsigned long>(v.Pair));
  return DigitText().Low(v.D, 8).Low(SubOr(v, 135), 8).Low(1 - ones % 2, 1).Low(v.F, 7).Low(v.Pair, 8).Take();
}

std::string JvcDigits(const ProtocolValues& v) { return DigitText().Low(v.D, 8).Low(v.F, 8).Take(); }

std::string AiwaDigits(const ProtocolValues& v) {
  const long s = SubOr(v, 0);
  return DigitText().Low(v.D, 8).Low(s, 5).Low(~v.D, 8).Low(~s, 5).Low(v.F, 8).Low(~v.F, 8).Take();
}

std::string PanasonicDigits(const ProtocolValues& v) {
  const long s = SubOr(v, 0);
  return DigitText().Low(2, 8).Low(32, 8).Low(v.D, 8).Low(s, 8).Low(v.F, 8).Low(v.D ^ s ^ v.F, 8).Take();
}

std::string RcaDigits(const ProtocolValues& v) {
  return DigitText().High(v.D, 4).High(v.F, 8).High(~v.D, 4).High(~v.F, 8).Take();
}

std::string Sony12Digits(const ProtocolValues& v) { return DigitText().Low(v.F, 7).Low(v.D, 5).Take(); }
std::string Sony15Digits(const ProtocolValues& v) { return DigitText().Low(v.F, 7).Low(v.D, 8).Take(); }
std::string Sony20Digits(const ProtocolValues& v) {
  return DigitText().Low(v.F, 7).Low(v.D, 5).Low(SubOr(v, 0), 8).Take();
}

/// A protocol that two digit patterns hold, under one of its names.
struct NamedProtocol {
  std::string_view Name;
  std::string_view Family;
  std::string (*Digits)(const ProtocolValues&);
  long MostD, MostS, MostF;
  long UsualD = -1;  // where the file gives none
};

// What several rows may write stands under its first name.
constexpr std::array kNamed = {
    NamedProtocol{"NEC1", "NEC", NecDigits, 255, 255, 255},
    NamedProtocol{"NEC", "NEC", NecDigits, 255, 255, 255},
    NamedProtocol{"NEC2", "NEC2", NecDigits, 255, 255, 255},
    NamedProtocol{"NEC1-f16", "NEC", NecFullDigits, 255, 255, 65535},
    NamedProtocol{"NEC2-f16", "NEC2", NecFullDigits, 255, 255, 65535},
    NamedProtocol{"Pioneer", "PIONEER", NecDigits, 255, 255, 255},
    NamedProtocol{"NECx2", "SAMSUNG", SamsungDigits, 255, 255, 255},
    NamedProtocol{"NECx1", "SAMSUNG", SamsungDigits, 255, 255, 255},
    NamedProtocol{"Samsung32", "SAMSUNG", SamsungDigits, 255, 255, 255},
    NamedProtocol{"Tivo", "NEC", TivoDigits, 255, 255, 255, 133},
    NamedProtocol{"Apple", "NEC", AppleDigits, 255, 255, 127, 238},
    NamedProtocol{"JVC", "JVC", JvcDigits, 255, -1, 255},
    NamedProtocol{"JVC{2}", "JVC", JvcDigits, 255, -1, 255},
    NamedProtocol{"Aiwa", "AIWA", AiwaDigits, 255, 31, 255},
    NamedProtocol{"Panasonic", "KASEIKYO", PanasonicDigits, 255, 255, 255},
    NamedProtocol{"Mitsubishi", "MITSUBISHI", JvcDigits, 255, -1, 255},
    NamedProtocol{"RCA", "RCA", RcaDigits, 15, -1, 255},
    NamedProtocol{"Sony12", "SONY", Sony12Digits, 31, -1, 127},
    NamedProtocol{"Sony15", "SONY", Sony15Digits, 255, -1, 127},
    NamedProtocol{"Sony20", "SONY", Sony20Digits, 31, 255, 127},
    NamedProtocol{"RC5", "RC5", Rc5Digits, 31, -1, 127},
};

std::string LowerCase(std::string_view name) {
  std::string lower(name);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

const NamedProtocol* FindNamed(std::string_view name) {
  const auto* const found = std::find_if(
      kNamed.begin(), kNamed.end(), [&](const NamedProtocol& row) { return LowerCase(row.Name) == name; });
  return found == kNamed.end() ? nullptr : found;
}

std::string OutOfRange(std::string_view what, long value, long most) {
  return "found " + std::string(what) + " " + std::to_string(value) + ", expected 0 to " +
         std::to_string(most);
}

std::string TakeNamed(const NamedProtocol& row, ProtocolValues v, RemoteKey& key) {
  if (v.D < 0) v.D = row.UsualD;
  if (v.D < 0 || v.D > row.MostD) return OutOfRange("a device of", v.D, row.MostD);
  if (v.F < 0 || v.F > row.MostF) return OutOfRange("a function of", v.F, row.MostF);
  if (row.MostS >= 0 && v.S > row.MostS) return OutOfRange("a subdevice of", v.S, row.MostS);
  if (row.Name == "Apple" && v.Pair < 0) return "its PairID is not told, which each remote has of its own";
  const Family& family = FamilyNamed(row.Family);
  key.Coded = SignalOf(family, row.Digits(v));
  key.Carrier = family.Carrier;
  if (row.Name == "NECx1") {
    key.Coded->Again.Kind = RepeatKind::None;
    key.Lost = "the short repeat of NECx1, a sync and one digit, is not kept";
  }
  return {};
}

/// Two frames that differ, as Denon and Sharp send them alternately.
void TakeTwoFrames(const ProtocolValues& v, int first, int second, RemoteKey& key) {
  constexpr int kUnit = 264, kGap = 165 * kUnit;  // microseconds
  const Coding code = {LineCode::Distance, kUnit, {}, {kUnit, 3 * kUnit}, {kUnit, 7 * kUnit}, kUnit};
  const auto frame = [&](long function, int check) {
    return FrameLengths(
        {code, {}, DigitText().Low(v.D, 5).Low(function, 8).Low(check, 2).Take(), std::nullopt});
  };
  key.Lengths = frame(v.F, first);
  key.Lengths.push_back(kGap);
  const PulseTrain other = frame(~v.F, second);
  key.Lengths.insert(key.Lengths.end(), other.begin(), other.end());
  key.Lengths.push_back(kGap);
  key.Carrier = 38'000;
}

std::string TakeOther(const std::string& name, const ProtocolValues& v, RemoteKey& key) {
  constexpr long kByte = 255;
  if (name == "denon" || name == "sharp") {
    if (v.D < 0 || v.D > 31) return OutOfRange("a device of", v.D, 31);
    if (v.F < 0 || v.F > kByte) return OutOfRange("a function of", v.F, kByte);
    TakeTwoFrames(v, name == "denon" ? 0 : 1, name == "denon" ? 3 : 2, key);
    return {};
  }
  if (name == "rc6") {
    if (v.D < 0 || v.D > kByte) return OutOfRange("a device of", v.D, kByte);
    if (v.F < 0 || v.F > kByte) return OutOfRange("a function of", v.F, kByte);
    TakeRc6(0, DigitText().High(v.D, 8).High(v.F, 8).Take(), key);
    return {};
  }
  if (name == "rc5-7f" || name == "rc5x") {
    const bool extended = name == "rc5x";
    const long mostD = extended ? 31 : 63, mostF = extended ? 63 : 127;
    if (v.D < 0 || v.D > mostD) return OutOfRange("a device of", v.D, mostD);
    if (v.F < 0 || v.F > mostF) return OutOfRange("a function of", v.F, mostF);
    for (const int toggle : {0, 1}) {
      TrainWriter train;
      const long high = extended ? SubOr(v, 0) >> 6 : v.D >> 5;
      WriteBiphase(train, DigitText().Low(1, 1).Low(~high, 1).Low(toggle, 1).High(v.D, 5).Take(),
                   kBiphaseHalf, false);
      if (extended) train.Space(4 * kBiphaseHalf);
      const std::string rest =
          extended ? DigitText().High(SubOr(v, 0), 6).High(v.F, 6).Take() : DigitText().High(v.F, 7).Take();
      WriteBiphase(train, rest, kBiphaseHalf, false);
      (toggle == 0 ? key.Lengths : key.Toggled) = train.TakeMarkLast();
    }
    key.Carrier = 36'000;
    return {};
  }
  return "the protocol is not known, and there are no lengths";
}

long ValueOf(std::string_view digits, bool highFirst) {
  return static_cast<long>(highFirst ? HighFirst(digits) : LowFirst(digits));
}

/// The values that digits would have in a row, without a look at what the row computes itself.
ProtocolValues GuessValues(const NamedProtocol& row, std::string_view d) {
  const auto low = [&](std::size_t first, std::size_t count) {
    return ValueOf(d.substr(first, count), false);
  };
  const auto high = [&](std::size_t first, std::size_t count) {
    return ValueOf(d.substr(first, count), true);
  };
  if (row.Family == "SONY") {
    const ProtocolValues values{low(7, d.size() == 15 ? 8 : 5), -1, low(0, 7)};
    return d.size() == 20 ? ProtocolValues{values.D, low(12, 8), values.F} : values;
  }
  if (row.Family == "RC5") return {high(3, 5), -1, high(8, 6) + (d[1] == '0' ? 64 : 0)};
  if (row.Family == "RCA") return {high(0, 4), -1, high(4, 8)};
  if (row.Family == "KASEIKYO") return {low(16, 8), low(24, 8), low(32, 8)};
  if (row.Family == "AIWA") return {low(0, 8), low(8, 5), low(26, 8)};
  if (d.size() == 16) return {low(0, 8), -1, low(8, 8)};
  if (row.MostF > 255) return {low(0, 8), low(8, 8), low(16, 16)};
  const bool plain = row.Family != "SAMSUNG" && AreInverse(d.substr(0, 8), d.substr(8, 8));
  return {low(0, 8), plain ? -1 : low(8, 8), low(16, 8)};
}

}  // namespace

std::string TakeValues(std::string_view protocol, const ProtocolValues& values, RemoteKey& key) {
  std::string name = LowerCase(protocol);
  if (name == "tivo unit=0") name = "tivo";
  if (const NamedProtocol* const row = FindNamed(name)) return TakeNamed(*row, values, key);
  return TakeOther(name, values, key);
}

std::optional<NamedValues> ValuesOf(const RemoteKey& key) {
  if (!key.Coded) return std::nullopt;
  const Family* const family = FamilyOf(*key.Coded, key.Carrier);
  if (family == nullptr) return std::nullopt;
  for (const NamedProtocol& row : kNamed) {
    // Aiwa's frame is that of NEC with 42 digits, in other words.
    const bool same = row.Family == family->Name || (row.Family == "AIWA" && family->Name == "NEC42");
    if (!same || row.Name == "Tivo" || row.Name == "Apple") continue;
    ProtocolValues values = GuessValues(row, key.Coded->Digits);
    if (row.Digits(values) == key.Coded->Digits)
      return NamedValues{row.Name, values, HasOwnCarrier(key, *family), HasOwnRepeat(key, *family)};
  }
  return std::nullopt;
}

PulseTrain Rc6Frame(int mode, bool toggle, std::string_view digits) {
  constexpr int kUnit = 444;  // microseconds
  TrainWriter train;
  train.Mark(6 * kUnit);
  train.Space(2 * kUnit);
  WriteBiphase(train, DigitText().Low(1, 1).High(static_cast<std::uint64_t>(mode), 3).Take(), kUnit, true);
  WriteBiphase(train, toggle ? "1" : "0", 2 * kUnit, true);
  WriteBiphase(train, digits, kUnit, true);
  return train.TakeMarkLast();
}

void TakeRc6(int mode, std::string_view digits, RemoteKey& key) {
  key.Lengths = Rc6Frame(mode, false, digits);
  key.Toggled = Rc6Frame(mode, true, digits);
  key.Carrier = kRc6Carrier;
}

}  // namespace keplo
