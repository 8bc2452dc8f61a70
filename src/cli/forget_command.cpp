#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/learn.h"
#include "program/app_path.h"

namespace keplo::cli {

namespace {

struct ForgetOptions {
  std::string Protocol, Name, AppPath;
};

int Forget(const ForgetOptions& options) {
  OpenConfig config(options.AppPath);
  config.RequireWhole();
  std::string refusal;
  try {
    refusal = RefusalText(DeleteCommand(config.Mod.Store, options.Protocol, options.Name));
  } catch (const Failure& failure) {
    refusal = failure.what();
  }
  if (!refusal.empty()) {
    std::cerr << "keplo: " << refusal << '\n';
    return kNoResult;
  }
  std::cout << options.Protocol << '&' << options.Name << " forgotten\n";
  return kDone;
}

}  // namespace

void AddForgetCommand(Command& root) {
  Command command = root.Sub("forget", "Delete a learned command");
  const auto options = std::make_shared<ForgetOptions>();
  command.Word("PROTOCOL", options->Protocol, "Section of keplo.cfg").Required();
  command.Word("COMMAND", options->Name, "Name of the command").Required();
  AddAppPathOption(command, options->AppPath);
  command.Runs([options] { return AmongOthers([&] { return Forget(*options); }); });
}

}  // namespace keplo::cli
