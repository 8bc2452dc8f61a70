#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "signal/sample_bits.h"
#include "signal/send_bits.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

/// Arbitrary digits and parameters of a protocol: a transmission is built within its bound or refused with
/// nothing changed, and packing loses no slot.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  keplo::ProtocolParams params;
  params.REPEAT = input.ConsumeIntegral<std::int16_t>();
  params.GREPEAT = input.ConsumeIntegral<std::int16_t>();
  const auto kind = input.ConsumeIntegral<std::int16_t>();
  const auto pulse = input.ConsumeIntegral<std::int32_t>();
  params.BITG = input.ConsumeRandomLengthString();
  params.BIT0 = input.ConsumeRandomLengthString();
  params.BIT1 = input.ConsumeRandomLengthString();
  std::string code = input.ConsumeRemainingBytesAsString();
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
