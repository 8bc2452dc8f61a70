#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "remotes/import_plan.h"

namespace keplo {

class ImportDialog;

/// Files of remotes that were read, and what of them could not be, for a person.
struct OpenedRemotes {
  std::vector<ImportedFile> Files;
  std::vector<std::string> Complaints;
};

/// How a view asks the user for files of remotes and what to take of them; none where nothing can be asked.
struct RemoteFiles {
  /// @return none if the user picks no file
  /// @throws Failure if none of the files can be read
  std::function<std::optional<OpenedRemotes>()> Open;
  /// Shows the dialog until it hides.
  std::function<void(ImportDialog& dialog)> Pick;
  /// @return what the format cannot say of the remotes, for a person
  /// @throws Failure for a file that cannot be written
  std::function<std::vector<std::string>(const std::vector<Remote>& remotes)> Save;
};

}  // namespace keplo
