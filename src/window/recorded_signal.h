#pragma once

#include <cstdint>
#include <string>

#include "config/sections.h"
#include "signal/protocol_params.h"
#include "window/reading_fields.h"

namespace keplo {

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
