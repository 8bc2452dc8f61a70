#include "install/first_install.h"

#include <cerrno>
#include <system_error>

#include "config/replace_file.h"
#include "events/event_schema.h"
#include "events/event_table.h"
#include "failure.h"
#include "install/shipped_config.h"

namespace keplo {

namespace {

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

}  // namespace

bool IsSetUp(const std::filesystem::path& appPath) {
  return IsThere(appPath / "keplo.cfg") || IsThere(appPath / kDatabaseFile);
}

bool BringFirstInstall(const std::filesystem::path& appPath, FileSystem& files) {
  CreateFolder(appPath);
  bool brought = false;
  if (const auto config = appPath / "keplo.cfg"; !IsThere(config)) {
    brought = CreateFile(files, config, ShippedConfig());
  }
  if (const auto database = appPath / kDatabaseFile; !IsThere(database)) {
    CreateEventTable(database);
    brought = true;
  }
  return brought;
}

}  // namespace keplo
