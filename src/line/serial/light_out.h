#pragma once

#include <chrono>
#include <string_view>

#include "line/serial/serial_port.h"

namespace keplo {

/// Where the light of a serial port comes from.
enum class LightOutput {
  Dtr,  // switches a carrier of the hardware
  Txd   // its characters are the carrier: three periods of 38.4 kHz each
};

/// Plays a signal of packed slots. Ends early, dark, when the device goes or the program is asked to end.
/// @return false if the device is gone
bool PlayLight(DeviceCalls& calls, const SerialPort& port, LightOutput output, std::string_view bytes,
               std::chrono::microseconds slot);

}  // namespace keplo
