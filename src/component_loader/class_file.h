#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace keplo {

/// The file that names the component of a class: velmora/classes/<class>.json in the user's data folder
/// ($XDG_DATA_HOME, else ~/.local/share).
/// @throws Failure if the user has no data folder
std::filesystem::path ClassFilePath(const std::string& className);

/// Writes the class file, in place of one that is there.
/// @param component absolute path of the component
/// @throws Failure with path and reason
void WriteClassFile(const std::string& className, const std::filesystem::path& component);

/// Removes the class file; one that is not there is no failure.
/// @throws Failure with path and reason
void RemoveClassFile(const std::string& className);

/// The component that the class file names.
/// @throws Failure that names the class file and tells what is wrong with it
std::filesystem::path ReadClassFile(const std::string& className);

/// The component that the text of a class file names.
/// @param classFile for the text of the failure
/// @throws Failure as ReadClassFile
std::filesystem::path ComponentNamedBy(std::string_view text, const std::filesystem::path& classFile);

}  // namespace keplo
