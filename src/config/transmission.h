#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/protocol_params.h"
#include "signal/win32_ser.h"

namespace keplo {

/// What goes on air when a key is pressed once.
struct Transmission {
  std::string Slots;                     // one character 0 or 1 each, whole bytes of them
  std::int32_t Slot = 0;                 // length of one, microseconds
  std::int32_t Carrier = kUsualCarrier;  // Hz, of lines that can set one
};

/// BuildSendBits for what a user has set up.
/// @throws Failure with what to do if the transmission would be too long, or the section cannot send the
/// code; nothing is changed then
std::string SlotsToSend(std::string digits, std::int16_t protoKind, ProtocolParams& params, bool& toggle);

/// The transmission of the code of a line code.
/// @param digits, protoKind, params, toggle as BuildSendBits takes them
/// @throws Failure as SlotsToSend
Transmission TransmissionOfDigits(std::string digits, std::int16_t protoKind, ProtocolParams& params,
                                  bool& toggle);

/// The transmission of a raw command. Forms that the remote sends in turn take turns.
/// @param turn how many were sent before
Transmission TransmissionOfRaw(const RawSignal& signal, std::size_t turn, std::int32_t carrier);

/// The transmission of a learned code, raw or not.
/// @param code with its leading G
/// @throws Failure as SlotsToSend
Transmission TransmissionOfCode(const CfgStore& store, std::string_view code, std::int16_t protoKind,
                                ProtocolParams& params, bool& toggle, std::size_t turn);

/// Sets the lines of a port as they have to be before something is sent by it.
void PrepareToSend(Win32Ser& line);
void PutOnAir(Win32Ser& line, const Transmission& transmission, std::int32_t interfaceType);

}  // namespace keplo
