#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace keplo {

/// The file that specifies the component of a class: velmora/classes/<class>.json in the user's data folder
/// ($XDG_DATA_HOME, otherwise ~/.local/share).
/// @throws Failure if the user has no data folder
std::filesystem::path ClassFilePath(const std::string& className);

/// Writes the class file, replacing an existing one.
/// @param component absolute path of the component
/// @throws Failure with path and reason
void WriteClassFile(const std::string& className, const std::filesystem::path& component);

/// Removes the class file, if it exists.
/// @throws Failure with path and reason
void RemoveClassFile(const std::string& className);

/// The component specified by the class file.
/// @throws Failure that says what is wrong with the class file
std::filesystem::path ReadClassFile(const std::string& className);

/// The component specified by the text of a class file.
/// @param classFile for the message of a failure
/// @throws Failure as ReadClassFile
std::filesystem::path ComponentNamedBy(std::string_view text, const std::filesystem::path& classFile);

}  // namespace keplo
