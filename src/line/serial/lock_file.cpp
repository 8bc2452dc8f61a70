#include "line/serial/lock_file.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "line/device_access.h"

namespace keplo {

namespace {

std::string LockFileOf(const std::string& device) {
  std::error_code error;
  const std::filesystem::path node = std::filesystem::weakly_canonical(device, error);
  return "/var/lock/LCK.." + (error ? std::filesystem::path(device) : node).filename().string();
}

}  // namespace

std::string HolderOfLockFile(const std::string& device) {
  std::ifstream file(LockFileOf(device));
  int process = 0;
  if (!(file >> process) || process <= 0 || process == getpid()) return {};
  return kill(process, 0) == 0 || errno == EPERM ? NameOfProcess(process) : std::string();
}

std::string TakeLockFile(const std::string& device) {
  std::string path = LockFileOf(device);
  if (HolderOfLockFile(device).empty()) unlink(path.c_str());
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (descriptor < 0) return {};
  char text[16];
  const int length = std::snprintf(text, sizeof text, "%10d\n", getpid());
  const bool written = write(descriptor, text, static_cast<std::size_t>(length)) == length;
  close(descriptor);
  if (written) return path;
  unlink(path.c_str());
  return {};
}

void ReleaseLockFile(const std::string& path) {
  if (!path.empty()) unlink(path.c_str());
}

}  // namespace keplo
