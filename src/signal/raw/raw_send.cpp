#include "signal/raw/raw_send.h"

#include <cstddef>

#include "signal/sample_bits.h"
#include "signal/send_bits.h"

namespace keplo {

namespace {

constexpr std::size_t kSilenceAfter = 800;  // samples

}  // namespace

std::string CaptureOfLengths(std::span<const int> lengths) {
  return BitsToChars(SlotsOfLengths(lengths, kNominalSampleTime) + std::string(kSilenceAfter, '0'));
}

std::string SlotsOfLengths(std::span<const int> lengths, std::int32_t slot) {
  std::string slots;
  std::int64_t time = 0;
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    time += lengths[i];
    slots.resize(static_cast<std::size_t>((time + slot / 2) / slot), i % 2 == 0 ? '1' : '0');
  }
  return slots;
}

}  // namespace keplo
