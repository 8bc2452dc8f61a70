#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "signal/protocol_params.h"
#include "window/reading_fields.h"

namespace keplo {

/// The last entry of the protocol list: no section, but the place of the key press recorded last.
inline constexpr std::string_view kRecorded = "Recorded";

/// Whether this is the name of that entry, in any letter case.
bool IsRecorded(std::string_view protocol);

/// What the window shows of a recorded key press, from which it can be sent and made a protocol of.
struct RecordedSignal {
  std::string Code;      // with its leading G
  std::string Bits;      // how many digits
  bool Repeats = false;  // its frames are equal
  std::string SyncType;
  std::int16_t ProtoKind = 0;
  std::string Pulse;  // base time, microseconds

  /// Whether there is a code to do anything with.
  bool HasCode() const;
};

/// @param protoKind of the recording
RecordedSignal ShownSignal(const ReadingFields& fields, std::int16_t protoKind);

/// Takes over how a recorded signal is repeated, and the patterns of its line code if that is known.
void TakeParams(const RecordedSignal& recorded, ProtocolParams& params);

}  // namespace keplo
