#pragma once

#include <cstdint>
#include <string>

#include "config/sections.h"
#include "signal/protocol_params.h"
#include "window/reading_fields.h"

namespace keplo {

/// A recorded key press as the window shows it, which is enough to send it or create a protocol for it.
struct RecordedSignal {
  std::string Code;      // with its leading G
  std::string Bits;      // number of digits
  bool Repeats = false;  // whether its frames are equal
  std::string SyncType;
  std::int16_t ProtoKind = 0;
  std::string Pulse;  // base time, microseconds

  /// Whether there is a code.
  bool HasCode() const;
};

/// @param protoKind of the recording
RecordedSignal ShownSignal(const ReadingFields& fields, std::int16_t protoKind);

/// Sets the repeats of a recorded signal and, if its line code is known, its patterns.
void SetParams(const RecordedSignal& recorded, ProtocolParams& params);

}  // namespace keplo
