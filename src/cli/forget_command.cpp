#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "cli/outcome.h"
#include "cli/reference.h"
#include "config/learn.h"
#include "program/app_path.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

struct ForgetOptions {
  std::string Protocol, Command, AppPath;
};

int Forget(const ForgetOptions& options) {
  CommandReference reference = ReferenceOf(options.Protocol, options.Command);
  OpenedConfig config(options.AppPath);
  config.Change([&](CfgStore& store) {
    reference = AsStored(store.CfgText, reference);
    Require(DeleteCommand(store, reference.Protocol, reference.Command));
  });
  std::cout << Printable(reference.Text()) << " forgotten\n";
  return kDone;
}

}  // namespace

void AddForgetCommand(Command& root) {
  Command command = root.Sub("forget", "Delete a learned command");
  const auto options = std::make_shared<ForgetOptions>();
  command.Word("PROTOCOL", options->Protocol, "Section of keplo.cfg, or both as 'NEC&POWER'").Required();
  command.Word("COMMAND", options->Command, "Name of the command");
  AddAppPathOption(command, options->AppPath);
  command.Examples({"keplo forget 'SONY&GREEN'"});
  command.Runs([options] { return Forget(*options); });
}

}  // namespace keplo::cli
