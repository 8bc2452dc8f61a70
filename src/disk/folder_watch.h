#pragma once

#include <filesystem>

#include "disk/descriptor.h"

namespace keplo {

/// Tells that a file of a folder was written, put in place or removed, by whatever program of this machine.
/// Costs nothing while none is.
class FolderWatch {
 public:
  explicit FolderWatch(const std::filesystem::path& folder);

  /// Becomes readable when there is news; -1 where the system tells none.
  int Descriptor() const { return news_.Number(); }
  /// @return whether there was news since the last call
  bool TakeNews() const;

 private:
  keplo::Descriptor news_;
};

}  // namespace keplo
