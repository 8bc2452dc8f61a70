#pragma once

#include <chrono>
#include <filesystem>
#include <utility>

#include "broker/broker_settings.h"
#include "disk/file_stamp.h"

namespace keplo::broker {

/// Notices changes of broker.json by polling.
class SettingsWatch {
 public:
  /// Time between calls of TakeChange, so that changes take effect within a second.
  static constexpr std::chrono::milliseconds kPollTime{400};

  /// Create it before reading the settings, so that no change is missed.
  explicit SettingsWatch(const std::filesystem::path& appPath)
      : file_(BrokerFile(appPath)), stamp_(StampOf(file_)) {}

  /// Whether the file was created, changed or removed since the last call.
  bool TakeChange() {
    const FileStamp now = StampOf(file_);
    return std::exchange(stamp_, now) != now;
  }

 private:
  const std::filesystem::path file_;
  FileStamp stamp_;
};

}  // namespace keplo::broker
