#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "cli/commands.h"
#include "keplo_mod.h"

namespace {

int RunKeplo(int argc, char** argv) {
  using namespace keplo::cli;
  CLI::App app("Listens to infrared remotes, decodes their key presses and raises events for them.", "keplo");
  app.set_version_flag("--version", "keplo " + keplo::VersionText);
  app.require_subcommand(1);
  app.fallthrough(false);

  int status = kDone;
  AddDecodeCommand(app, status);
  AddMonitorCommand(app, status);
  AddEventsCommand(app, status);
  AddCommandsCommand(app, status);
  AddLookupCommand(app, status);
  AddInstallCommand(app, status);
  AddSynthCommand(app, status);
  if (argc > 1 && argv[1][0] != '-' && app.get_subcommand_no_throw(argv[1]) == nullptr) {
    std::cerr << "keplo: there is no command " << argv[1] << "; keplo --help lists those that are\n";
    return kWrongUse;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUse;
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return RunKeplo(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "keplo: " << error.what() << '\n';
    return keplo::cli::kWrongUse;
  }
}
