#include "formats/trade/scancode.h"

#include <array>

#include "formats/families.h"
#include "formats/irp.h"
#include "formats/trade/reading.h"

namespace keplo::trade {

namespace {

std::string NecScancode(std::uint64_t v) {
  return DigitText().Low(v >> 8U, 8).Low(~v >> 8U, 8).Low(v, 8).Low(~v, 8).Take();
}
std::string NecXScancode(std::uint64_t v) {
  return DigitText().Low(v >> 16U, 8).Low(v >> 8U, 8).Low(v, 8).Low(~v, 8).Take();
}
std::string Nec32Scancode(std::uint64_t v) {
  return DigitText().Low(v >> 16U, 8).Low(v >> 24U, 8).Low(v, 8).Low(v >> 8U, 8).Take();
}
std::string Sony12Scancode(std::uint64_t v) { return DigitText().Low(v, 7).Low(v >> 16U, 5).Take(); }
std::string Sony15Scancode(std::uint64_t v) { return DigitText().Low(v, 7).Low(v >> 16U, 8).Take(); }
std::string Sony20Scancode(std::uint64_t v) {
  return DigitText().Low(v, 7).Low(v >> 16U, 5).Low(v >> 8U, 8).Take();
}
std::string Rc5Scancode(std::uint64_t v) {
  return DigitText().Low(1, 1).Low(~v >> 6U, 1).Low(0, 1).High(v >> 8U, 5).High(v, 6).Take();
}
std::string JvcScancode(std::uint64_t v) { return DigitText().Low(v >> 8U, 8).Low(v, 8).Take(); }
std::string SanyoScancode(std::uint64_t v) {
  return DigitText().Low(v >> 8U, 13).Low(~v >> 8U, 13).Low(v, 8).Low(~v, 8).Take();
}

struct ScancodeProtocol {
  std::string_view Name, Family;
  std::uint64_t Most;
  std::string (*Digits)(std::uint64_t value);
};

// The shortest form stands first: a value that fits it means it.
constexpr std::array kScancodes = {
    ScancodeProtocol{"nec", "NEC", 0xFFFF, NecScancode},
    ScancodeProtocol{"necx", "NEC", 0xFF'FFFF, NecXScancode},
    ScancodeProtocol{"nec32", "NEC", 0xFFFF'FFFF, Nec32Scancode},
    ScancodeProtocol{"sony12", "SONY", 0x1F'007F, Sony12Scancode},
    ScancodeProtocol{"sony15", "SONY", 0xFF'007F, Sony15Scancode},
    ScancodeProtocol{"sony20", "SONY", 0x1F'FF7F, Sony20Scancode},
    ScancodeProtocol{"rc5", "RC5", 0x1F7F, Rc5Scancode},
    ScancodeProtocol{"jvc", "JVC", 0xFFFF, JvcScancode},
    ScancodeProtocol{"sanyo", "NEC42", 0x1F'FFFF, SanyoScancode},
};

std::string TakeRc6Scancode(std::string_view name, std::uint64_t value, RemoteKey& key) {
  struct Rc6Form {
    std::string_view Name;
    int Mode, Digits;
  };
  constexpr std::array kForms = {Rc6Form{"rc60", 0, 16}, Rc6Form{"rc66a20", 6, 20}, Rc6Form{"rc66a24", 6, 24},
                                 Rc6Form{"rc66a32", 6, 32}, Rc6Form{"rc6mce", 6, 32}};
  for (const Rc6Form& form : kForms) {
    if (form.Name != PlainProtocol(name)) continue;
    if (value >> static_cast<unsigned>(form.Digits) != 0)
      return "the code has too many bits for " + std::string(name);
    TakeRc6(form.Mode, DigitText().High(value, form.Digits).Take(), key);
    if (form.Mode == 0) return {};
    // Mode 6 has its toggle, if any, among its digits.
    constexpr std::uint64_t kMceToggle = 0x8000;
    key.Toggled.clear();
    if (form.Name == "rc6mce")
      key.Toggled = Rc6Frame(6, false, DigitText().High(value ^ kMceToggle, 32).Take());
    return {};
  }
  return UnknownProtocol(name);
}

}  // namespace

std::string PlainProtocol(std::string_view name) {
  std::string plain = Lower(name);
  std::erase_if(plain, [](char c) { return c == '-' || c == '_'; });
  return plain;
}

std::string TakeScancode(std::string_view protocol, std::uint64_t value, RemoteKey& key) {
  const std::string name = PlainProtocol(protocol);
  for (const ScancodeProtocol& row : kScancodes) {
    if (row.Name != name) continue;
    const Family& family = FamilyNamed(row.Family);
    // Drivers add bits of their own, which the format's own program does not send.
    key.Coded = SignalOf(family, row.Digits(value & row.Most));
    key.Carrier = family.Carrier;
    return {};
  }
  if (name == "sharp") {
    return TakeValues(name, {static_cast<long>(value >> 8U), -1, static_cast<long>(value & 0xFFU)}, key);
  }
  return TakeRc6Scancode(protocol, value, key);
}

std::optional<Scancode> ScancodeOf(const RemoteKey& key) {
  if (!key.Coded) return std::nullopt;
  const Family* const family = FamilyOf(*key.Coded, key.Carrier);
  if (family == nullptr) return std::nullopt;
  const std::string_view d = key.Coded->Digits;
  const auto low = [&](std::size_t first, std::size_t count) { return LowFirst(d.substr(first, count)); };
  for (const ScancodeProtocol& row : kScancodes) {
    if (row.Family != family->Name) continue;
    std::uint64_t value = 0;
    if (row.Digits == NecScancode) value = low(0, 8) << 8U | low(16, 8);
    if (row.Digits == NecXScancode) value = low(0, 8) << 16U | low(8, 8) << 8U | low(16, 8);
    if (row.Digits == Nec32Scancode)
      value = low(0, 8) << 16U | low(8, 8) << 24U | low(16, 8) | low(24, 8) << 8U;
    if (row.Digits == Sony12Scancode || row.Digits == Sony15Scancode)
      value = low(0, 7) | low(7, d.size() - 7) << 16U;
    if (row.Digits == Sony20Scancode && d.size() == 20)
      value = low(0, 7) | low(7, 5) << 16U | low(12, 8) << 8U;
    if (row.Digits == Rc5Scancode)
      value = HighFirst(d.substr(8)) | HighFirst(d.substr(3, 5)) << 8U | (d[1] == '0' ? 0x40U : 0U);
    if (row.Digits == JvcScancode) value = low(0, 8) << 8U | low(8, 8);
    if (row.Digits == SanyoScancode) value = low(0, 13) << 8U | low(26, 8);
    // A value that fits a shorter form would be read as that.
    const bool isLonger =
        (row.Digits != NecXScancode || value > 0xFFFF) && (row.Digits != Nec32Scancode || value > 0xFF'FFFF);
    if (isLonger && (value & ~row.Most) == 0 && row.Digits(value) == d) return Scancode{row.Name, value};
  }
  return std::nullopt;
}

}  // namespace keplo::trade
