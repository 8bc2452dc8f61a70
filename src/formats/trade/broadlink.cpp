#include "formats/trade/broadlink.h"

#include <algorithm>
#include <cmath>

#include "formats/families.h"
#include "formats/trade/reading.h"

namespace keplo::trade {

namespace {

constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kInfrared = 0x26, kRadio433 = 0xB2, kRadio315 = 0xD7;
constexpr std::size_t kBroadlinkHead = 4;  // kind, repeats and the length of the data
constexpr double kTick = 8192.0 / 269.0;   // microseconds
constexpr int kLongestLength = 0xFFFF;     // ticks
constexpr int kClosingRest = 101'502;      // microseconds, that the device adds after a press

bool AllZero(const std::vector<std::uint8_t>& bytes, std::size_t first, std::size_t end) {
  return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(first),
                     bytes.begin() + static_cast<std::ptrdiff_t>(end),
                     [](std::uint8_t byte) { return byte == 0; });
}

void WriteLength(std::vector<std::uint8_t>& bytes, int length) {
  const auto ticks = static_cast<int>(std::clamp<long>(std::lround(length / kTick), 1, kLongestLength));
  if (ticks > 0xFF) {
    bytes.push_back(0);
    bytes.push_back(static_cast<std::uint8_t>(ticks >> 8));
  }
  bytes.push_back(static_cast<std::uint8_t>(ticks & 0xFF));
}

std::string Base64Of(const std::vector<std::uint8_t>& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t j = 0; j < 3; ++j) group = group << 8U | (i + j < bytes.size() ? bytes[i + j] : 0U);
    for (int shift = 18; shift >= 0; shift -= 6) text += kBase64[group >> static_cast<unsigned>(shift) & 63U];
  }
  const std::size_t missing = (3 - bytes.size() % 3) % 3;
  text.replace(text.size() - missing, missing, missing, '=');
  return text;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> BytesOfBase64(std::string_view text) {
  while (text.ends_with('=')) text.remove_suffix(1);
  if (text.size() % 4 == 1) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  std::uint32_t group = 0;
  int bits = 0;
  for (const char c : text) {
    const std::size_t letter = kBase64.find(c);
    if (letter == std::string_view::npos) return std::nullopt;
    group = (group << 6U | static_cast<std::uint32_t>(letter)) & 0xFFFFU;
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    bytes.push_back(static_cast<std::uint8_t>(group >> static_cast<unsigned>(bits)));
  }
  return bytes;
}

std::optional<std::vector<std::uint8_t>> BytesOfHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const std::optional<std::uint8_t> byte = HexByteOf(text.substr(i, 2));
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

std::string TakeBroadlink(const std::vector<std::uint8_t>& bytes, RemoteKey& key) {
  if (bytes.size() <= kBroadlinkHead)
    return "found " + std::to_string(bytes.size()) + " bytes, expected a Broadlink code";
  if (bytes[0] == kRadio433 || bytes[0] == kRadio315) return "it is a code for radio, not for infrared";
  if (bytes[0] != kInfrared)
    return "found a first byte of " + HexText(bytes[0], 2) + ", expected 26 for infrared, both in hex";
  const std::size_t end = kBroadlinkHead + bytes[2] + (std::size_t{bytes[3]} << 8U);
  if (end > bytes.size()) {
    return "it is cut: found " + std::to_string(bytes.size() - kBroadlinkHead) + " bytes of " +
           std::to_string(end - kBroadlinkHead);
  }
  LengthList lengths;
  for (std::size_t i = kBroadlinkHead; i < end && !AllZero(bytes, i, end); ++i) {
    int ticks = bytes[i];
    if (ticks == 0) {
      if (i + 2 >= end) return "it is cut within a length";
      ticks = bytes[i + 1] << 8 | bytes[i + 2];
      i += 2;
    }
    lengths.Add(std::lround(ticks * kTick));
  }
  if (!lengths.Fault().empty()) return lengths.Fault();
  if (lengths.Size() == 0) return "there are no lengths in it";
  key.Lengths = lengths.Take();
  if (key.Lengths.back() != kClosingRest) return {};
  // The rest is no gap of the signal.
  key.Coded = ReadPress(PulseTrain(key.Lengths.begin(), key.Lengths.end() - 1), {});
  return {};
}

std::string BroadlinkText(const RemoteKey& key) {
  PulseTrain press = PressOf(key);
  if (press.size() % 2 != 0) press.push_back(ClosingSilence(key));
  std::vector<std::uint8_t> bytes = {kInfrared, 0, 0, 0};
  for (const int length : press) WriteLength(bytes, length);
  const std::size_t size = bytes.size() - kBroadlinkHead;
  bytes[2] = static_cast<std::uint8_t>(size & 0xFFU);
  bytes[3] = static_cast<std::uint8_t>(size >> 8U);
  return Base64Of(bytes);
}

}  // namespace keplo::trade
