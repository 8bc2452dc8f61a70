#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "signal/sample_bits.h"
#include "signal/send_bits.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// The next number of the input; zeros where it ends.
template <typename Number>
Number NextNumber(std::string_view& input) {
  Number number = 0;
  const std::size_t length = std::min(sizeof number, input.size());
  std::memcpy(&number, input.data(), length);
  input.remove_prefix(length);
  return number;
}

/// The next line of the input.
std::string NextLine(std::string_view& input) {
  const std::string_view line = input.substr(0, input.find('\n'));
  input.remove_prefix(std::min(line.size() + 1, input.size()));
  return std::string(line);
}

}  // namespace

/// Arbitrary digits and parameters of a protocol: a transmission is built within its bound or refused with
/// nothing changed, and packing loses no slot.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  keplo::ProtocolParams params;
  params.REPEAT = NextNumber<std::int16_t>(input);
  params.GREPEAT = NextNumber<std::int16_t>(input);
  const auto kind = NextNumber<std::int16_t>(input);
  const auto pulse = NextNumber<std::int32_t>(input);
  params.BITG = NextLine(input);
  params.BIT0 = NextLine(input);
  params.BIT1 = NextLine(input);
  std::string code = std::string(input);
  const std::string given = code;
  bool toggle = false;
  try {
    const std::string slots = keplo::PadToBytes(keplo::BuildSendBits(code, kind, params, toggle));
    Require(slots.size() <= keplo::kMostSlots + 8);
    const std::string bits = keplo::SamplesToBits(keplo::BitsToChars(slots));
    Require(bits.size() == slots.size());
    for (std::size_t i = 0; i < slots.size(); ++i) Require((bits[i] == '1') == (slots[i] == '1'));
    Require(keplo::CaptureOfSlots(slots, pulse).size() <= 4095);
  } catch (const std::length_error&) {
    Require(code == given && !toggle);
  }
  return 0;
}
