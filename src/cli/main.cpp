
#include "cli/commands.h"
#include "keplo_mod.h"
#include "program/arguments.h"
#include "program/stop_signals.h"

namespace {

int RunKeplo(int argc, char** argv) {
  using namespace keplo::cli;
  keplo::CommandLine line(
      "keplo", keplo::VersionText,
      "Listens to infrared remotes, decodes their key presses and raises events for them.");
  keplo::Command root = line.Root();
  for (const auto add :
       {AddDecodeCommand,   AddExplainCommand,   AddMonitorCommand,  AddEventsCommand, AddCommandsCommand,
        AddLookupCommand,   AddRecordCommand,    AddLearnCommand,    AddForgetCommand, AddProtocolsCommand,
        AddProtocolCommand, AddSendCommand,      AddImportCommand,   AddExportCommand, AddConvertCommand,
        AddInstallCommand,  AddCalibrateCommand, AddSettingsCommand, AddSynthCommand,  AddPortsCommand,
        AddZoneCommand,     AddBrokerCommand}) {
    add(root);
  }
  line.AddHelpCommand();
  return line.Run(argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
  keplo::IgnoreFileSizeSignal();
  return keplo::cli::RunToEnd([&] { return RunKeplo(argc, argv); });
}
