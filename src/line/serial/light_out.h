#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>
#include <vector>

#include "line/serial/serial_port.h"

namespace keplo {

/// One stretch of light, in slots from the beginning of a signal.
struct LitSlots {
  std::size_t Begin = 0;
  std::size_t End = 0;
};

/// The stretches of light of packed slots, most significant bit first.
std::vector<LitSlots> LitSlotsOf(std::string_view bytes);

/// Plays a signal on DTR, which switches a carrier of the hardware. Ends early, dark, when the device goes or
/// the program is asked to end.
/// @return false if the device is gone
bool PlayOnDtr(DeviceCalls& calls, const SerialPort& port, std::string_view bytes,
               std::chrono::microseconds slot);

/// Plays a signal on TxD, whose characters are the carrier: three periods of 38.4 kHz each.
/// @return false if the device is gone
bool PlayOnTxd(DeviceCalls& calls, const SerialPort& port, std::string_view bytes,
               std::chrono::microseconds slot);

}  // namespace keplo
