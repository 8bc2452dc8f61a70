#include "disk/user_data_folder.h"

#include <cstdlib>

namespace keplo {

namespace {

/// The absolute path in an environment variable; otherwise empty.
std::filesystem::path FolderNamedBy(const char* variable) {
  const char* const value = std::getenv(variable);
  std::filesystem::path folder = value == nullptr ? "" : value;
  return folder.is_absolute() ? folder : std::filesystem::path();
}

}  // namespace

std::optional<std::filesystem::path> UserDataFolder() {
  if (auto data = FolderNamedBy("XDG_DATA_HOME"); !data.empty()) return data;
  if (const auto home = FolderNamedBy("HOME"); !home.empty()) return home / ".local" / "share";
  return std::nullopt;
}

}  // namespace keplo
