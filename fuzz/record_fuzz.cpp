#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "signal/decode_frames.h"
#include "signal/recorded_press.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

bool HoldsOnly(std::string_view text, std::string_view characters) {
  return text.find_first_not_of(characters) == std::string_view::npos;
}

}  // namespace

/// Arbitrary bytes as a recording and as run symbols: no reading may go out of bounds or without end, and a
/// code holds digits alone, or half bits where it is biphase.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  keplo::SignalState state;
  const keplo::RecordReading reading = keplo::ReadRecordedCapture(bytes, state);
  Require(HoldsOnly(reading.Code, reading.ProtoKind == keplo::kRc5 ? "01xy" : "01"));
  Require(reading.Runs.Ones.size() <= size * 8 && reading.Runs.Zeros.size() <= size * 8);
  Require(!reading.Values || HoldsOnly(reading.Code, "01"));
  for (const std::int16_t kind : {keplo::kNec, keplo::kSony, keplo::kRc5}) {
    std::string decoded;
    keplo::DecodeFrames(bytes, kind, decoded);
    Require(HoldsOnly(decoded, "01Gxy"));
  }
  return 0;
}
