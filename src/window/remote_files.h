#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "remotes/import_plan.h"

namespace keplo {

class ImportDialog;

/// Files of remotes, and what could not be read of them, for the user.
struct OpenedRemotes {
  std::vector<ImportedFile> Files;
  std::vector<std::string> Complaints;
};

/// How a view lets the user pick files of remotes, and keys from them. The functions are empty if there is no
/// view.
struct RemoteFiles {
  /// @return none if the user picks no file
  /// @throws Failure if none of the files can be read
  std::function<std::optional<OpenedRemotes>()> Open;
  /// Shows the dialog until it hides.
  std::function<void(ImportDialog& dialog)> Pick;
  /// @return what is lost because the format cannot express it, for the user
  /// @throws Failure if the file cannot be written
  std::function<std::vector<std::string>(const std::vector<Remote>& remotes)> Save;
};

}  // namespace keplo
