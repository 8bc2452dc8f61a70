#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "signal/monitored_press.h"

/// Arbitrary bytes as a capture: no reading may go out of bounds, and a code holds digits alone.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  keplo::SignalState state;
  const keplo::MonitorReading reading =
      keplo::ReadCapture({reinterpret_cast<const char*>(data), size}, state);
  if (reading.Digits.find_first_not_of("01") != std::string::npos) std::abort();
  return 0;
}
