#pragma once

#include <filesystem>

#include "disk/descriptor.h"

namespace keplo {

/// Tells that a file of a folder was written, put in place or removed, by whatever program of this machine.
/// Where an entry is a link, that counts of the folder of its target too. Costs nothing while none is.
class FolderWatch {
 public:
  explicit FolderWatch(std::filesystem::path folder);

  /// Becomes readable when there is news; -1 where the system tells none.
  int Descriptor() const { return news_.Number(); }
  /// Whether the system tells of the folder at all.
  bool TellsOfFolder() const { return tellsFolder_; }
  /// @return whether there was news since the last call
  bool TakeNews();

 private:
  bool Watch(const std::filesystem::path& folder);
  /// The folders that the links of the folder lead to, as they are now.
  void WatchTargets();

  std::filesystem::path folder_;
  keplo::Descriptor news_;
  bool tellsFolder_;
};

}  // namespace keplo
