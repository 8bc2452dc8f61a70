#include "install/first_install.h"

#include <cerrno>
#include <system_error>

#include "disk/replace_file.h"
#include "events/event_schema.h"
#include "events/event_table.h"
#include "failure.h"
#include "install/shipped_files.h"

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
  std::error_code error;
  const std::filesystem::file_type type = std::filesystem::symlink_status(path, error).type();
  if (type == std::filesystem::file_type::none) {
    throw Failure(error.value(), "Cannot look for " + path.string() + ": " + error.message() +
                                     ". Check the rights of its folder.");
  }
  return type != std::filesystem::file_type::not_found;
}

/// @return false if another first start has made it meanwhile
bool CreateDatabase(FileSystem& files, const std::filesystem::path& database) try {
  CreateEventTable(database, files);
  return true;
} catch (const Failure& failure) {
  if (failure.Number() == EEXIST && IsThere(database)) return false;
  throw;
}

}  // namespace

bool IsSetUp(const std::filesystem::path& appPath) { return IsThere(appPath / kDatabaseFile); }

std::vector<std::string> BringFirstInstall(const std::filesystem::path& appPath, FileSystem& files) {
  CreateFolder(appPath);
  std::vector<std::string> brought;
  for (const ShippedFile& shipped : ShippedFiles()) {
    const std::filesystem::path file = appPath / shipped.Name;
    if (!IsThere(file) && CreateFile(files, file, shipped.Bytes)) brought.emplace_back(shipped.Name);
  }
  const std::filesystem::path database = appPath / kDatabaseFile;
  if (!IsThere(database) && CreateDatabase(files, database)) brought.emplace_back(kDatabaseFile);
  return brought;
}

}  // namespace keplo
