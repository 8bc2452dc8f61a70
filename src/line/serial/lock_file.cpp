#include "line/serial/lock_file.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "line/device_access.h"

namespace keplo {

namespace {

std::string LockFileOf(const std::string& device) {
  std::error_code error;
  const std::filesystem::path node = std::filesystem::weakly_canonical(device, error);
  return "/var/lock/LCK.." + (error ? std::filesystem::path(device) : node).filename().string();
}

/// The process of a lock file: its number as text or, of some programs, as four bytes.
/// @return none if there is no such file; 0 for one that tells no process
std::optional<int> ProcessOf(const std::string& lockFile) {
  std::ifstream file(lockFile, std::ios::binary);
  if (!file) return std::nullopt;
  std::string content(32, '\0');
  file.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(file.gcount()));
  int process = 0;
  if (std::istringstream(content) >> process) return std::max(process, 0);
  if (content.size() == sizeof process) std::memcpy(&process, content.data(), sizeof process);
  return std::max(process, 0);
}

bool Runs(int process) { return kill(process, 0) == 0 || errno == EPERM; }

/// Whether whoever made a lock file had the time to open the port since.
bool IsSettled(const std::string& lockFile) {
  std::error_code error;
  const auto made = std::filesystem::last_write_time(lockFile, error);
  return !error && std::filesystem::file_time_type::clock::now() - made > std::chrono::seconds(10);
}

/// Whether a lock file is left from a process that is gone; its number may be that of another one by now.
bool IsStale(const std::string& lockFile, int process, const std::string& device) {
  const bool isGone = process == getpid() || !Runs(process);
  return isGone || (IsSettled(lockFile) && !HasDeviceOpen(process, device).value_or(true));
}

}  // namespace

std::string HolderOfLockFile(const std::string& device) {
  const std::string path = LockFileOf(device);
  const int process = ProcessOf(path).value_or(0);
  if (process <= 0 || IsStale(path, process, device)) return {};
  std::string holder = NameOfProcess(process);
  if (HasDeviceOpen(process, device).has_value()) return holder;
  return holder + ", as " + path + " says (if that is wrong, delete the file)";
}

std::string TakeLockFile(const std::string& device) {
  std::string path = LockFileOf(device);
  // One that cannot be understood may be of a program that runs.
  const int process = ProcessOf(path).value_or(0);
  if (process > 0 && IsStale(path, process, device)) unlink(path.c_str());
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
