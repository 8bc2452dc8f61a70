#pragma once

#include <string_view>

namespace keplo::host {

/// Whether a stream leads to the system's journal. Programs that the journal's user starts inherit the
/// variable, so its presence alone tells nothing.
/// @param journalStream value of $JOURNAL_STREAM: device and inode of the journal's stream, "8:12345"
bool IsJournal(int descriptor, std::string_view journalStream);

}  // namespace keplo::host
