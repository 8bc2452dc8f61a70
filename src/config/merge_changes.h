#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keplo {

/// Two changes of one configuration text brought together, line by line.
///
/// The selected protocol of [General] never stands in the way: if this program has selected another one, the
/// result has that protocol at whatever place it now is.
/// @param base the text that both changes began with
/// @param mine the text of this program
/// @param theirs the text of another program
/// @return empty if both have changed the same line or neighbouring ones, if both bring the same code, or if
/// one of the texts is not whole
std::optional<std::string> MergeChanges(const std::string& base, const std::string& mine,
                                        const std::string& theirs);

}  // namespace keplo
