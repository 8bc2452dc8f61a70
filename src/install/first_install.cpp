#include "install/first_install.h"

#include <cerrno>
#include <string_view>
#include <system_error>

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "events/event_schema.h"
#include "events/event_table.h"
#include "failure.h"
#include "install/shipped_files.h"

namespace keplo {

namespace {

/// Exists beside the files of a first install until it is complete.
constexpr const char* kUnfinishedFile = "install.unfinished";
constexpr std::string_view kUnfinishedText = "A first install was begun here. The next start completes it.\n";

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

bool IsNew(const std::filesystem::path& appPath) {
  return !IsThere(appPath / ShippedFiles()[0].Name) && !IsThere(appPath / kDatabaseFile);
}

/// CreateFile, with failures that name the file instead of its temporary name.
bool CreateShippedFile(FileSystem& files, const std::filesystem::path& file, std::string_view bytes) try {
  return CreateFile(files, file, bytes);
} catch (const Failure& failure) {
  if (failure.Number() == EWOULDBLOCK) throw;
  const Failure named = CannotBeWritten(file, failure);
  throw Failure(named.Number(), std::string(named.what()) + ". Check the folder and the room on its disk.");
}

/// @return false if another program has created it meanwhile
bool CreateDatabase(FileSystem& files, const std::filesystem::path& database) try {
  CreateEventTable(database, files);
  return true;
} catch (const Failure& failure) {
  if (failure.Number() == EEXIST && IsThere(database)) return false;
  throw;
}

}  // namespace

std::vector<std::string> CreateFirstInstall(const std::filesystem::path& appPath, FileSystem& files) {
  CreateFolder(appPath);
  const std::filesystem::path unfinished = appPath / kUnfinishedFile;
  if (IsNew(appPath)) CreateShippedFile(files, unfinished, kUnfinishedText);
  std::vector<std::string> created;
  for (const ShippedFile& shipped : ShippedFiles()) {
    const std::filesystem::path file = appPath / shipped.Name;
    if (!IsThere(file) && CreateShippedFile(files, file, shipped.Bytes)) created.emplace_back(shipped.Name);
  }
  const std::filesystem::path database = appPath / kDatabaseFile;
  if (!IsThere(database) && CreateDatabase(files, database)) created.emplace_back(kDatabaseFile);
  if (IsThere(unfinished)) RemoveQuietly(files, unfinished);
  return created;
}

bool CompleteInstall(const std::filesystem::path& appPath, FileSystem& files) {
  // In this order, because another program that is completing the install removes the mark last.
  if (!IsNew(appPath) && !IsThere(appPath / kUnfinishedFile)) return false;
  return !CreateFirstInstall(appPath, files).empty();
}

bool CompleteInstall(const std::filesystem::path& appPath) {
  PosixFileSystem files;
  return CompleteInstall(appPath, files);
}

}  // namespace keplo
