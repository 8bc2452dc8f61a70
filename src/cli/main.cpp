#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>

#include "cli/commands.h"
#include "keplo_mod.h"

namespace {

/// The command of that name below another one; none if there is no such.
const CLI::App* FindCommand(const CLI::App& app, const std::string& word) {
  const auto commands = app.get_subcommands([](const CLI::App* command) { return command != nullptr; });
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const CLI::App* command) { return command->get_name() == word; });
  return found == commands.end() ? nullptr : *found;
}

/// The first word that stands where a command should and names none; empty if there is no such.
std::string UnknownCommand(const CLI::App& app, int argc, char** argv) {
  const CLI::App* command = &app;
  for (int i = 1; i < argc && argv[i][0] != '-' && command->get_require_subcommand_min() > 0; ++i) {
    command = FindCommand(*command, argv[i]);
    if (command == nullptr) return argv[i];
  }
  return {};
}

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
  AddRecordCommand(app, status);
  AddLearnCommand(app, status);
  AddForgetCommand(app, status);
  AddProtocolsCommand(app, status);
  AddProtocolCommand(app, status);
  AddSendCommand(app, status);
  AddInstallCommand(app, status);
  AddCalibrateCommand(app, status);
  AddSettingsCommand(app, status);
  AddSynthCommand(app, status);
  if (const std::string word = UnknownCommand(app, argc, argv); !word.empty()) {
    std::cerr << "keplo: there is no command '" << word << "'; --help lists those that are\n";
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
    const int status = RunKeplo(argc, argv);
    if (std::cout.flush()) return status;
    std::cerr << "keplo: the output cannot be written; is the disk full, or the reader gone?\n";
    return keplo::cli::kWrongUse;
  } catch (const std::exception& error) {
    std::cerr << "keplo: " << error.what() << '\n';
    return keplo::cli::kWrongUse;
  }
}
