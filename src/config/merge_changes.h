#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keplo {

/// Merges two changes of one configuration text, line by line.
///
/// The selected protocol of [General] never conflicts: if this program has selected another one, the result
/// selects that protocol at its new index.
/// @param base the text that both changes started from
/// @param mine the text of this program
/// @param theirs the text of another program
/// @return empty if both changed the same or neighbouring lines, if both add the same code, or if one of the
/// texts is not whole
std::optional<std::string> MergeChanges(const std::string& base, const std::string& mine,
                                        const std::string& theirs);

}  // namespace keplo
