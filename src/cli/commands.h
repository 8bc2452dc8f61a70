#pragma once

#include "cli/outcome.h"
#include "program/arguments.h"

namespace keplo::cli {

// Each function adds a command to the program.
void AddDecodeCommand(Command& root);
void AddExplainCommand(Command& root);
void AddMonitorCommand(Command& root);
void AddEventsCommand(Command& root);
void AddCommandsCommand(Command& root);
void AddLookupCommand(Command& root);
void AddRecordCommand(Command& root);
void AddLearnCommand(Command& root);
void AddForgetCommand(Command& root);
void AddProtocolsCommand(Command& root);
void AddProtocolCommand(Command& root);
void AddSendCommand(Command& root);
void AddInstallCommand(Command& root);
void AddImportCommand(Command& root);
void AddExportCommand(Command& root);
void AddConvertCommand(Command& root);
void AddCalibrateCommand(Command& root);
void AddSettingsCommand(Command& root);
void AddSynthCommand(Command& root);
void AddPortsCommand(Command& root);
void AddZoneCommand(Command& root);
void AddBrokerCommand(Command& root);

}  // namespace keplo::cli
