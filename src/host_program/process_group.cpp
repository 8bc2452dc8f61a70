#include "host_program/process_group.h"

#include <signal.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace keplo::host {

namespace {

/// Whether a folder of /proc is that of a running process of the group.
bool IsRunningMember(const std::filesystem::path& process, pid_t group) {
  std::ifstream file(process / "stat");
  std::string line;
  if (!std::getline(file, line)) return false;
  // The second field is the name of the program in parentheses, and may contain any characters.
  std::istringstream fields(line.substr(line.rfind(')') + 1));
  char state = 'Z';
  pid_t parent = 0, itsGroup = 0;
  fields >> state >> parent >> itsGroup;
  return itsGroup == group && state != 'Z' && state != 'X';
}

}  // namespace

bool IsAlive(pid_t group) {
  if (kill(-group, 0) != 0 && errno == ESRCH) return false;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename().string();
    if (name.front() >= '0' && name.front() <= '9' && IsRunningMember(entry.path(), group)) return true;
  }
  return static_cast<bool>(error);  // without /proc, zombies count
}

}  // namespace keplo::host
