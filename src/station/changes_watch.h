#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "disk/folder_watch.h"

namespace keplo {

/// Decides when whoever runs a control should let it check for changes by other programs.
class ChangesWatch {
 public:
  /// @param folder of the files
  explicit ChangesWatch(const std::filesystem::path& folder) : folder_(folder) {}

  /// Becomes readable when Notice should be called.
  int Descriptor() const { return folder_.Descriptor(); }
  /// How long until IsDue should be called if nothing happens.
  std::chrono::milliseconds TimeToNextCheck() const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_ - std::chrono::steady_clock::now());
    return std::max(left, std::chrono::milliseconds::zero());
  }
  /// Reads the descriptor; a check may be due earlier than before.
  void Notice() {
    // A change takes several steps, and a database stays locked until the last one.
    if (folder_.TakeNews()) next_ = std::min(next_, std::chrono::steady_clock::now() + kSettlingTime);
  }
  /// Makes a check due soon, for a change that could not be taken in and may not be signalled again.
  void CheckSoon() { next_ = std::min(next_, std::chrono::steady_clock::now() + kRetryTime); }
  /// Calls Notice, and returns whether a check is due.
  bool IsDue() {
    Notice();
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) return false;
    next_ = now + kPollTime;
    if (!folder_.IsWatching()) CheckSoon();
    return true;
  }

 private:
  static constexpr std::chrono::milliseconds kSettlingTime{200}, kRetryTime{400};
  static constexpr std::chrono::seconds kPollTime{
      5};  // for changes that are not signalled, as by other machines

  FolderWatch folder_;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + kPollTime;
};

}  // namespace keplo
