#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace keplo::broker {

/// Eight random hexadecimal digits that name an installation on the broker. They are made once and kept
/// beside keplo.cfg, so that a host that is renamed stays who it was.
/// @throws Failure for a file that cannot be read, holds something else, or cannot be written
std::string IdentityOf(const std::filesystem::path& appPath);

/// APPPATH/broker.id
std::filesystem::path IdentityFile(const std::filesystem::path& appPath);

/// A text as one level of a topic and as a name in Home Assistant: letters, digits and - stay, all else
/// becomes _ and two hexadecimal digits a byte, so that different texts stay different.
std::string SafeForTopic(std::string_view text);

}  // namespace keplo::broker
