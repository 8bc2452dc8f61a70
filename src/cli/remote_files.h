#pragma once

#include <string>
#include <vector>

#include "remotes/import_plan.h"

namespace keplo::cli {

/// Remotes out of files, and what the exit code of the command has become on the way.
struct LoadedRemotes {
  std::vector<ImportedFile> Files;
  int Status = 0;
};

/// Reads remotes, and tells what of them cannot be read.
/// @param format by name; empty to tell it from the content
/// @throws WrongUse if no format has that name
LoadedRemotes LoadRemoteFiles(const std::vector<std::string>& files, const std::string& format);

/// Puts remotes into a file, or out where it has no name, and tells what the format cannot say.
/// @return the exit code
int WriteRemoteFile(const std::string& format, const std::vector<Remote>& remotes, const std::string& out);

/// The names of all formats, for a help.
std::string FormatNames();

}  // namespace keplo::cli
