#include <cstddef>
#include <cstdint>
#include <string_view>

#include "formats/pulse_text.h"
#include "formats/recording.h"
#include "line/press_capture.h"
#include "signal/monitored_press.h"
#include "signal/sample_bits.h"

/// Arbitrary text as a recording: it is refused with a message or every press of it fills a capture, shaped
/// and as recorded, and is read to its end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    for (const keplo::PulseTrain& train :
         keplo::ParsePulseText({reinterpret_cast<const char*>(data), size}, "fuzz")) {
      for (const bool shape : {true, false}) {
        keplo::LineOptions options;
        options.Shape = shape;
        const std::string capture =
            keplo::CaptureOfPress(keplo::Press(train), keplo::kMonitorCaptureBytes, options);
        if (capture.size() != keplo::kMonitorCaptureBytes) __builtin_trap();
        keplo::SignalState state;
        keplo::ReadCapture(capture, state);
      }
    }
  } catch (const keplo::FormatError&) {
    // Refused with a message.
  }
  return 0;
}
