#pragma once

#include <chrono>
#include <filesystem>
#include <utility>

#include "broker/broker_settings.h"
#include "disk/file_stamp.h"

namespace keplo::broker {

/// Tells whoever uses a broker that its settings were written anew, by looking at their file.
class SettingsWatch {
 public:
  /// Between two looks: changes are to count within a second.
  static constexpr std::chrono::milliseconds kLook{400};

  /// Make it ahead of reading the settings, so that no change is missed.
  explicit SettingsWatch(const std::filesystem::path& appPath)
      : file_(BrokerFile(appPath)), stamp_(StampOf(file_)) {}

  /// Whether the file came, changed or went since the last call.
  bool TakeChange() {
    const FileStamp now = StampOf(file_);
    return std::exchange(stamp_, now) != now;
  }

 private:
  const std::filesystem::path file_;
  FileStamp stamp_;
};

}  // namespace keplo::broker
