#pragma once

#include <filesystem>

#include "disk/descriptor.h"

namespace keplo {

/// Notices when a file in a folder was written, created or removed by any program of this machine. If an
/// entry is a link, the folder of its target is watched as well.
class FolderWatch {
 public:
  explicit FolderWatch(std::filesystem::path folder);

  /// Becomes readable when there is news; -1 if the system does not support this.
  int Descriptor() const { return news_.Number(); }
  /// Whether the folder itself can be watched.
  bool IsWatching() const { return isWatching_; }
  /// @return whether there was news since the last call
  bool TakeNews();

 private:
  bool Watch(const std::filesystem::path& folder);
  /// Watches the folders that the links currently in the folder lead to.
  void WatchTargets();

  std::filesystem::path folder_;
  keplo::Descriptor news_;
  bool isWatching_;
};

}  // namespace keplo
