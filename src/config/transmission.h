#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/protocol_params.h"
#include "signal/win32_ser.h"

namespace keplo {

/// What is sent for one press of a key.
struct Transmission {
  std::string Slots;                     // a character 0 or 1 per slot, padded to whole bytes
  std::int32_t Slot = 0;                 // length of a slot, microseconds
  std::int32_t Carrier = kUsualCarrier;  // Hz, for lines that can set it
};

/// BuildSendBits with parameters from a user.
/// @throws Failure, with advice, if the transmission would be too long or the section cannot send the code;
/// nothing is changed then
std::string SlotsToSend(std::string digits, std::int16_t protoKind, ProtocolParams& params, bool& toggle);

/// The transmission of the digits of a code.
/// @param digits, protoKind, params, toggle as for BuildSendBits
/// @throws Failure as SlotsToSend
Transmission TransmissionOfDigits(std::string digits, std::int16_t protoKind, ProtocolParams& params,
                                  bool& toggle);

/// The transmission of a raw command. If it has several forms, they take turns.
/// @param turn number of transmissions sent before
Transmission TransmissionOfRaw(const RawSignal& signal, std::size_t turn, std::int32_t carrier);

/// The transmission of a learned code, raw or not.
/// @param code with its leading G
/// @throws Failure as SlotsToSend
Transmission TransmissionOfCode(const CfgStore& store, std::string_view code, std::int16_t protoKind,
                                ProtocolParams& params, bool& toggle, std::size_t turn);

/// Sets the control lines of a port as sending requires.
void PrepareToSend(Win32Ser& line);
/// @param interfaceType as in Settings
void PutOnAir(Win32Ser& line, const Transmission& transmission, std::int32_t interfaceType);

}  // namespace keplo
