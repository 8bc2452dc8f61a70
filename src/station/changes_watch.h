#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "disk/folder_watch.h"

namespace keplo {

/// Tells whoever runs a control when to let it look for changes of other programs.
class ChangesWatch {
 public:
  /// @param folder of the files that others may change
  explicit ChangesWatch(const std::filesystem::path& folder) : folder_(folder) {}

  /// Becomes readable when there is something to notice.
  int Descriptor() const { return folder_.Descriptor(); }
  /// How long Due need not be asked otherwise.
  std::chrono::milliseconds MayWait() const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_ - std::chrono::steady_clock::now());
    return std::max(left, std::chrono::milliseconds::zero());
  }
  /// Lets the descriptor rest; a look may be due sooner after that.
  void Notice() {
    // A change comes in several steps, and a database is locked until the last of them is over.
    if (folder_.TakeNews()) next_ = std::min(next_, std::chrono::steady_clock::now() + kSettles);
  }
  /// Lets a look be due soon: of a change that could not be taken in, nobody may tell again.
  void LookAgain() { next_ = std::min(next_, std::chrono::steady_clock::now() + kAgain); }
  /// Notices, and tells whether a look is due.
  bool Due() {
    Notice();
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) return false;
    next_ = now + kUntold;
    if (!folder_.TellsOfFolder()) LookAgain();
    return true;
  }

 private:
  static constexpr std::chrono::milliseconds kSettles{200}, kAgain{400};
  static constexpr std::chrono::seconds kUntold{5};  // a file of another folder, or of another machine

  FolderWatch folder_;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + kUntold;
};

}  // namespace keplo
