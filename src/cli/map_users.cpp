#include "cli/map_users.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "cli/outcome.h"
#include "events/event_schema.h"
#include "program/app_path.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

namespace fs = std::filesystem;

/// Whether a process has a file open; false if we may not see its files.
bool HasOpen(const fs::path& process, const fs::path& file) {
  std::error_code error;
  for (fs::directory_iterator open(process / "fd", error), end; !error && open != end;
       open.increment(error)) {
    std::error_code gone;
    if (fs::read_symlink(open->path(), gone) == file) return true;
  }
  return false;
}

std::string ContentOf(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Whether a process keeps the map open: other commands of this program than the monitor end soon.
bool KeepsMapOpen(const fs::path& process) {
  using namespace std::string_literals;
  const bool isKeplo = ContentOf(process / "comm") == ContentOf("/proc/self/comm");
  return !isKeplo || ContentOf(process / "cmdline").find("\0monitor\0"s) != std::string::npos;
}

}  // namespace

void ReportMapUsers(const std::string& appPathOption) {
  std::error_code error;
  const fs::path map = fs::canonical(ResolveAppPath(appPathOption) / kDatabaseFile, error);
  if (error) return;
  for (fs::directory_iterator process("/proc", error), end; !error && process != end;
       process.increment(error)) {
    const std::string number = process->path().filename();
    const bool isProcess =
        std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isProcess || !HasOpen(process->path(), map) || !KeepsMapOpen(process->path())) continue;
    const std::string name = ContentOf(process->path() / "comm");
    Tell(Printable(name.substr(0, name.find('\n'))) + ", process " + number +
         ", has this event map open; a host or monitor takes the change in within a second");
  }
}

}  // namespace keplo::cli
