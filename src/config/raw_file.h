#pragma once

#include <map>
#include <string>
#include <string_view>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// The lengths of one command, and their text in the file.
struct RawEntry {
  RawSignal Signal;  // has no forms if the entry is damaged
  std::string Text;
};

/// Entries by digits.
using RawEntries = std::map<std::string, RawEntry, std::less<>>;

/// Reads a file of raw commands: mode2 lines, which the replay line can play as well, with a comment before
/// each command that holds its digits and a checksum of its lines. An entry whose checksum does not match
/// keeps its text but has no forms.
RawEntries ReadRawText(std::string_view text);

RawEntry MakeRawEntry(const RawSignal& signal);

/// @param protocol section of the commands
std::string WriteRawText(std::string_view protocol, const RawEntries& entries);

}  // namespace keplo
