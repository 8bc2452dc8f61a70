#pragma once

#include <map>
#include <string>
#include <string_view>

#include "signal/raw/raw_signal.h"

namespace keplo {

/// The lengths of one command in a file, and their text.
struct RawEntry {
  RawSignal Signal;  // without forms if they are damaged
  std::string Text;
};

/// Entries by their digits.
using RawEntries = std::map<std::string, RawEntry, std::less<>>;

/// Reads the text of a file of raw commands: mode2 lines, which every player of recordings reads too, with a
/// comment before each command that holds its digits and a checksum of its lines. An entry whose lines are
/// not those of its checksum keeps its text and has no forms.
RawEntries ReadRawText(std::string_view text);

RawEntry MakeRawEntry(const RawSignal& signal);

/// @param protocol section that the commands stand in
std::string WriteRawText(std::string_view protocol, const RawEntries& entries);

}  // namespace keplo
