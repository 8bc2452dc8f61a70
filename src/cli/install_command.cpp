#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/teach.h"
#include "disk/posix_file_system.h"
#include "install/first_install.h"
#include "program/app_path.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

struct InstallOptions {
  std::string AppPath;
  std::string Index;
};

int Install(const InstallOptions& options) {
  const std::filesystem::path appPath = ResolveAppPath(options.AppPath);
  PosixFileSystem files;
  bool created = false;
  Write([&] { created = !CreateFirstInstall(appPath, files).empty(); });
  std::cout << (created ? "Brought a first install to " : "There is an install already in ")
            << Printable(appPath.string()) << '\n';
  return options.Index.empty() ? kDone : TeachIndex(options.AppPath, options.Index);
}

}  // namespace

void AddInstallCommand(Command& root) {
  Command command = root.Sub("install", "Bring keplo.cfg and an empty event map; never overwrites");
  const auto options = std::make_shared<InstallOptions>();
  AddAppPathOption(command, options->AppPath);
  command.Word("--teach", options->Index, "Learn the codes of this index file (JSON) as well").MustBeFile();
  command.Examples({"keplo install", "keplo install --app-path try --teach samples/index.json"});
  command.Runs([options] { return Install(*options); });
}

}  // namespace keplo::cli
