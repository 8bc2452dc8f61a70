#include "install/first_install.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "disk/posix_file_system.h"
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

StartInstall CompleteInstall(const std::filesystem::path& appPath, FileSystem& files) {
  const std::filesystem::path config = ShippedFiles()[0].Name;
  const bool hadConfig = IsThere(appPath / config), hadMap = IsThere(appPath / kDatabaseFile);
  StartInstall start;
  start.IsFirst = !hadConfig && !hadMap;
  const std::vector<std::string> brought = BringFirstInstall(appPath, files);
  const auto wasBrought = [&](const std::string& name) {
    return !start.IsFirst && std::find(brought.begin(), brought.end(), name) != brought.end();
  };
  const auto remark = [&](const std::string& name, const char* made) {
    return "There was no " + name + " in " + appPath.string() + ", so " + made +
           ". If there has been one before, put a backup of it in its place.";
  };
  if (wasBrought(config))
    start.OfConfig = remark(config, "one with the protocols of a first install was made");
  if (wasBrought(kDatabaseFile)) start.OfMap = remark(kDatabaseFile, "an empty event map was made");
  return start;
}

StartInstall CompleteInstall(const std::filesystem::path& appPath) {
  PosixFileSystem files;
  return CompleteInstall(appPath, files);
}

}  // namespace keplo
