#include "program/app_path.h"

#include <cerrno>
#include <system_error>

#include "disk/user_data_folder.h"
#include "failure.h"
#include "program/environment.h"
#include "typed_command.h"

namespace keplo {

void AddAppPathOption(Command& command, std::string& appPath) {
  command.WordAlsoBefore(
      "--app-path", appPath,
      "Folder of keplo.cfg and the event map (else $KEPLO_HOME, else the user's data folder)");
}

std::filesystem::path ResolveAppPath(const std::string& option) {
  if (!option.empty()) return option;
  if (const std::string home = Environment("KEPLO_HOME"); !home.empty()) return home;
  if (const auto data = UserDataFolder()) return *data / "keplo";
  throw Failure(ENOENT, "There is no HOME to keep files in. Name a folder with --app-path.");
}

bool IsAppPathNamed(const std::string& option) {
  return !option.empty() || !Environment("KEPLO_HOME").empty();
}

std::filesystem::path RequireInstall(const std::string& option) {
  std::filesystem::path appPath = ResolveAppPath(option);
  const std::filesystem::path config = appPath / "keplo.cfg";
  std::error_code error;
  // A dangling link counts as existing; loading it fails with a better message.
  if (std::filesystem::symlink_status(config, error).type() == std::filesystem::file_type::not_found &&
      std::filesystem::symlink_status(appPath.parent_path(), error).type() !=
          std::filesystem::file_type::regular) {
    throw Failure(ENOENT, config.string() + ": No such file or directory. Bring a first install with: " +
                              TypedCommand("install", appPath.string()));
  }
  return appPath;
}

}  // namespace keplo
