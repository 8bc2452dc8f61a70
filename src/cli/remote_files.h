#pragma once

#include <string>
#include <vector>

#include "remotes/import_plan.h"

namespace keplo::cli {

/// Remotes from files, and the exit code resulting from reading them.
struct LoadedRemotes {
  std::vector<ImportedFile> Files;
  int Status = 0;
};

/// Reads remotes, and reports what cannot be read.
/// @param format name of the format; empty to detect it
/// @throws UsageError if no format has that name
LoadedRemotes LoadRemoteFiles(const std::vector<std::string>& files, const std::string& format);

/// Writes remotes to a file, or to standard output if `out` is empty, and reports what the format cannot
/// express.
/// @return the exit code
int WriteRemoteFile(const std::string& format, const std::vector<Remote>& remotes, const std::string& out);

/// The names of all formats, for the help.
std::string FormatNames();

}  // namespace keplo::cli
