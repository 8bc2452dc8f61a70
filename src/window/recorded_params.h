#pragma once

#include <cstdint>
#include <string_view>

namespace keplo {

/// Slots of silence ahead of a repeat, where a recording shows repeats but no protocol tells a number.
inline constexpr std::int16_t kRecordedRepeat = 50;

/// GREPEAT of a recording.
/// @param syncType as the window shows it, trimmed
constexpr std::int16_t RecordedGRepeat(std::string_view syncType) {
  if (syncType == "0") return 0;
  return syncType == "1" ? std::int16_t{1} : kRecordedRepeat;
}

}  // namespace keplo
