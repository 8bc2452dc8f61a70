#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "remotes/import_plan.h"
#include "remotes/section_signal.h"
#include "remotes/stored_codes.h"

namespace keplo {

/// Puts a reason behind those that a key has; an empty one is none.
void AddReason(PlannedKey& planned, std::string_view reason);

/// Tells what an existing section sends in another way than the file of a key says.
/// @param name of the section
void TellOtherSending(std::string_view name, const SectionSignal& section, PlannedKey& planned);

/// Tells that only one of two codes of a key is stored.
/// @param digit in which they differ, from 0; none where the key has one code
void TellToggle(std::optional<std::size_t> digit, PlannedKey& planned);

/// Tells ahead of all other reasons whose code is in the way. A code that is stored already takes over where
/// that is.
/// @param with reference of the command that has the other code
void TellMeeting(StoredCodes::Meeting how, const std::string& with, PlannedKey& planned);

}  // namespace keplo
