#pragma once

#include <cstdint>
#include <string>

namespace keplo {

/// Carrier of a protocol that names none, Hz: what receivers of remotes are built for.
inline constexpr std::int32_t kUsualCarrier = 38'000;

/// How a protocol is sent. Patterns are strings of 0 and 1, one character a slot of SENDPLS microseconds.
struct ProtocolParams {
  std::int16_t SENDPLS = 0;              // length of a slot, microseconds
  std::int16_t REPEAT = 0;               // silent slots before each repeat of the frame; 0 for none
  std::string BIT0, BIT1;                // what is sent for a digit
  std::string BITG;                      // sync before a frame
  std::int16_t GREPEAT = 0;              // above 1: the repeats have a sync signal of their own
  std::string BitTail;                   // closing slot of a frame, see BitTailOf
  std::int32_t Carrier = kUsualCarrier;  // Hz; 0 for light without one
  std::string SENDAS = {};  // of codes that the others do not tell all of, see send_as.h; mostly empty
};

/// Closing slot of a frame: pulse distance measures from mark to mark, so a last mark must close the last
/// digit.
inline std::string BitTailOf(std::int16_t protoKind) { return protoKind == 0 ? "1" : ""; }

}  // namespace keplo
