#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace keplo::broker {

/// Eight random hexadecimal digits that identify an installation on the broker. They are created once and
/// stored beside keplo.cfg, so that renaming the host does not change its identity.
/// @throws Failure for a file that cannot be read, has other content, or cannot be written
std::string IdentityOf(const std::filesystem::path& appPath);

/// APPPATH/broker.id
std::filesystem::path IdentityFile(const std::filesystem::path& appPath);

/// Encodes a text for use as a topic level and as a name in Home Assistant: letters, digits and - are kept,
/// each other byte becomes _ and two hexadecimal digits. Different texts give different results.
std::string SafeForTopic(std::string_view text);

}  // namespace keplo::broker
