#include "cli/app_path.h"

#include <cstdlib>

namespace keplo::cli {

namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

}  // namespace

void AddAppPathOption(CLI::App& command, std::string& appPath) {
  command.add_option("--app-path", appPath,
                     "Folder of keplo.cfg and the event map (else $KEPLO_HOME, else the user's data folder)");
}

std::filesystem::path ResolveAppPath(const std::string& option) {
  if (!option.empty()) return option;
  if (const std::string home = Environment("KEPLO_HOME"); !home.empty()) return home;
  if (const std::string data = Environment("XDG_DATA_HOME"); !data.empty()) {
    return std::filesystem::path(data) / "keplo";
  }
  return std::filesystem::path(Environment("HOME")) / ".local" / "share" / "keplo";
}

}  // namespace keplo::cli
