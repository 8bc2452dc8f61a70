#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "formats/families.h"
#include "formats/remote.h"

namespace {

/// Takes small numbers off a text; 0 at its end.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool Empty() const { return place_ == size_; }
  std::size_t Below(std::size_t bound) { return Empty() ? 0 : data_[place_++] % bound; }

 private:
  const std::uint8_t* data_;
  std::size_t size_, place_ = 0;
};

constexpr std::array<std::string_view, 12> kFamilies = {"NEC",     "NEC2", "NEC42", "PIONEER",
                                                        "SAMSUNG", "SONY", "RC5",   "KASEIKYO",
                                                        "JVC",     "AIWA", "RCA",   "MITSUBISHI"};

std::string DigitsOf(const keplo::Family& family, Bytes& bytes) {
  constexpr std::array<std::size_t, 3> kSony = {12, 15, 20};
  std::size_t count = family.Digits > 0 ? static_cast<std::size_t>(family.Digits) : kSony[bytes.Below(3)];
  std::string digits;
  for (; count > 0; --count) digits += bytes.Below(2) == 0 ? '0' : '1';
  // Of equal digits alone lengths do not tell which they are, and a toggle counts as 0.
  digits.front() = '1';
  digits[2] = '0';
  return digits;
}

keplo::RemoteKey KeyOf(Bytes& bytes) {
  constexpr std::array kCarriers = {36'000, 38'000, 40'000, 56'000, 0};
  const keplo::Family& family = keplo::FamilyNamed(kFamilies[bytes.Below(kFamilies.size())]);
  keplo::RemoteKey key;
  if (bytes.Below(4) > 0)
    key.Name = std::string(1 + bytes.Below(3), static_cast<char>('"' + bytes.Below(90)));
  key.Carrier = bytes.Below(2) == 0 ? family.Carrier : kCarriers[bytes.Below(kCarriers.size())];
  key.Coded = keplo::SignalOf(family, DigitsOf(family, bytes));
  constexpr std::array kKinds = {keplo::RepeatKind::Frame, keplo::RepeatKind::None,
                                 keplo::RepeatKind::Unknown};
  if (bytes.Below(3) == 1) key.Coded->Again.Kind = kKinds[bytes.Below(kKinds.size())];
  return key;
}

/// What was written is read again as digits that went in; none may come of nothing.
void GoRound(const keplo::RemoteFormat& format, const keplo::Remote& remote) {
  std::multiset<std::string> digits;
  for (const keplo::RemoteKey& key : remote.Keys) digits.insert(key.Coded->Digits);
  std::vector<keplo::Complaint> told;
  const std::string text = keplo::WriteRemotes(format.Name, {remote}, told);
  keplo::RemoteFile back;
  try {
    back = keplo::ReadRemotes(text, "fuzz", format.Name);
  } catch (const keplo::FormatError&) {
    if (told.size() < remote.Keys.size()) __builtin_trap();
    return;
  }
  std::size_t keys = 0;
  for (const keplo::Remote& read : back.Remotes) {
    keys += read.Keys.size();
    for (const keplo::RemoteKey& key : read.Keys) {
      if (!key.Skipped.empty()) __builtin_trap();
      if (!key.Coded) continue;
      const auto found = digits.find(key.Coded->Digits);
      if (found == digits.end()) __builtin_trap();
      digits.erase(found);
    }
  }
  if (keys + told.size() < remote.Keys.size()) __builtin_trap();
}

}  // namespace

/// Keys of known protocols, out in each format and in again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostFuzzedKeys = 8;
  Bytes bytes(data, size);
  keplo::Remote remote{"fuzz", {}};
  while (!bytes.Empty() && remote.Keys.size() < kMostFuzzedKeys) remote.Keys.push_back(KeyOf(bytes));
  if (remote.Keys.empty()) return 0;
  for (const keplo::RemoteFormat& format : keplo::RemoteFormats()) GoRound(format, remote);
  return 0;
}
