#include "config/transmission.h"

#include <cerrno>
#include <stdexcept>
#include <utility>

#include "failure.h"
#include "signal/raw/raw_send.h"
#include "signal/send_bits.h"

namespace keplo {

std::string SlotsToSend(std::string digits, std::int16_t protoKind, ProtocolParams& params,
                        bool& toggle) try {
  return BuildSendBits(digits, protoKind, params, toggle);
} catch (const std::logic_error& unsendable) {
  throw Failure(EMSGSIZE, unsendable.what());
}

Transmission TransmissionOfDigits(std::string digits, std::int16_t protoKind, ProtocolParams& params,
                                  bool& toggle) {
  const std::int16_t slot = SlotOf(digits, protoKind, params);
  return {PadToBytes(SlotsToSend(std::move(digits), protoKind, params, toggle)), slot, params.Carrier};
}

Transmission TransmissionOfRaw(const RawSignal& signal, std::size_t turn, std::int32_t carrier) {
  const RawLengths& form = signal.Forms[turn % signal.Forms.size()];
  return {PadToBytes(SlotsOfLengths(form, kRawSlot)), kRawSlot, carrier};
}

Transmission TransmissionOfCode(const CfgStore& store, std::string_view code, std::int16_t protoKind,
                                ProtocolParams& params, bool& toggle, std::size_t turn) {
  if (const RawSignal* raw = FindRawSignal(store, code)) return TransmissionOfRaw(*raw, turn, params.Carrier);
  return TransmissionOfDigits(std::string(code.substr(1)), protoKind, params, toggle);
}

void PrepareToSend(Win32Ser& line) {
  line.DTR(0);
  line.RTS(-1);
}

void PutOnAir(Win32Ser& line, const Transmission& transmission, std::int32_t interfaceType) {
  line.SetCarrier(transmission.Carrier);
  line.IRSend(BitsToChars(transmission.Slots), transmission.Slot, interfaceType);
}

}  // namespace keplo
