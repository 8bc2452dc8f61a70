#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

namespace keplo {

/// Distinguishes states of a file. All 0 if the file does not exist.
struct FileStamp {
  std::uint64_t Inode = 0;
  std::int64_t Size = 0, Seconds = 0, Nanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

inline FileStamp StampOf(const std::filesystem::path& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return {};
  return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

}  // namespace keplo
