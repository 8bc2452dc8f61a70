#pragma once

#include <string_view>

namespace keplo::host {

/// Whether a stream is connected to the system's journal. The variable alone is not enough, because programs
/// started by a service inherit it.
/// @param journalStream value of $JOURNAL_STREAM: device and inode of the journal's stream, "8:12345"
bool IsJournal(int descriptor, std::string_view journalStream);

}  // namespace keplo::host
