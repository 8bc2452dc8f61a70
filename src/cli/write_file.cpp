#include "cli/write_file.h"

#include <fstream>

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"

namespace keplo::cli {

namespace {

/// Whether the path leads to what takes a text but cannot be replaced, such as a pipe or a terminal.
bool IsStream(const std::filesystem::path& path) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  return std::filesystem::exists(status) && std::filesystem::is_other(status);
}

bool WriteStream(const std::filesystem::path& path, std::string_view content) {
  std::ofstream stream(path, std::ios::binary);
  stream << content << std::flush;
  return stream.good();
}

bool Replace(const std::filesystem::path& path, std::string_view content) try {
  PosixFileSystem files;
  ReplaceFile(files, path, content)->Flush();
  return true;
} catch (const Failure&) {
  return false;
}

}  // namespace

void WriteFile(const std::filesystem::path& path, std::string_view content) {
  if (IsStream(path) ? WriteStream(path, content) : Replace(path, content)) return;
  throw Failure(1, "Cannot write " + path.string() + ". Check that its folder is there and not full.");
}

}  // namespace keplo::cli
