#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/remote.h"

namespace keplo {

/// The parameters of a protocol that is named, as collections give them; -1 where there is none.
struct ProtocolValues {
  long D = -1, S = -1, F = -1;  // device, subdevice, function
  long T = -1;                  // toggle
  long Pair = -1;               // Apple's PairID
};

/// Gives the key what a protocol makes of its parameters: digits, or lengths where two digit patterns do not
/// hold it. Names are those of the IRP collection, in any case.
/// @return empty, or why the key cannot have either
std::string TakeValues(std::string_view protocol, const ProtocolValues& values, RemoteKey& key);

struct NamedValues {
  std::string_view Protocol;
  ProtocolValues Values;
  bool OwnCarrier = false, OwnRepeat = false;  // which the name does not say
};

/// The reverse of TakeValues for digits.
std::optional<NamedValues> ValuesOf(const RemoteKey& key);

/// An RC6 press of mode 0, or another with as many digits after the toggle.
/// @param digits after the toggle
PulseTrain Rc6Frame(int mode, bool toggle, std::string_view digits);

inline constexpr int kRc6Carrier = 36'000;  // Hz

/// Gives the key both forms of an RC6 command.
void TakeRc6(int mode, std::string_view digits, RemoteKey& key);

}  // namespace keplo
