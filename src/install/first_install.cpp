#include "install/first_install.h"

#include <cerrno>
#include <system_error>

#include "events/event_schema.h"
#include "events/event_table.h"
#include "failure.h"
#include "install/shipped_config.h"

namespace keplo {

namespace {

constexpr unsigned kConfigMode = 0666;  // less what the process takes off all its new files

void CreateFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw Failure(error.value(), "Cannot create the folder " + folder.string() + ": " + error.message() +
                                     ". Choose another one with --app-path.");
  }
}

bool IsThere(const std::filesystem::path& path) {
  return std::filesystem::symlink_status(path).type() != std::filesystem::file_type::not_found;
}

void CreateConfig(const std::filesystem::path& path, FileSystem& files) {
  const std::unique_ptr<LockedFolder> folder = files.Lock(path.parent_path());
  const std::unique_ptr<NewFile> file = files.Create(path, kConfigMode);
  file->Write(ShippedConfig());
  file->Flush();
  file->Publish();
  folder->Flush();
}

}  // namespace

bool BringFirstInstall(const std::filesystem::path& appPath, FileSystem& files) {
  CreateFolder(appPath);
  bool brought = false;
  if (const auto config = appPath / "keplo.cfg"; !IsThere(config)) {
    CreateConfig(config, files);
    brought = true;
  }
  if (const auto database = appPath / kDatabaseFile; !IsThere(database)) {
    CreateEventTable(database);
    brought = true;
  }
  return brought;
}

}  // namespace keplo
