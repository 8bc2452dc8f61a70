#include "cli/write_file.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"

namespace keplo::cli {

namespace {

/// Whether a path is that of a pipe, a terminal or the like, which can be written, but not replaced.
bool IsStream(const std::filesystem::path& path) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  return std::filesystem::exists(status) && std::filesystem::is_other(status);
}

void WriteStream(const std::filesystem::path& path, std::string_view content) {
  std::ofstream stream(path, std::ios::binary);
  stream << content << std::flush;
  if (!stream.good()) throw Failure(errno, std::strerror(errno));
}

void Replace(const std::filesystem::path& path, std::string_view content) {
  PosixFileSystem files;
  ReplaceFile(files, path, content)->Flush();
}

}  // namespace

void WriteFile(const std::filesystem::path& path, std::string_view content) try {
  IsStream(path) ? WriteStream(path, content) : Replace(path, content);
} catch (const Failure& failure) {
  throw Failure(failure.Number(), "Cannot write " + path.string() + ": " + std::strerror(failure.Number()) +
                                      ". Check that its folder is there and not full.");
}

}  // namespace keplo::cli
