#pragma once

#include <CLI/CLI.hpp>

namespace keplo::cli {

/// Exit codes of the command.
inline constexpr int kDone = 0;
inline constexpr int kNoResult = 1;  // some input gave no result
inline constexpr int kWrongUse = 2;  // wrong use or unreadable input

// Each adds its subcommand; its callback runs the work and writes the exit code to status.
void AddDecodeCommand(CLI::App& app, int& status);
void AddMonitorCommand(CLI::App& app, int& status);
void AddEventsCommand(CLI::App& app, int& status);
void AddCommandsCommand(CLI::App& app, int& status);
void AddLookupCommand(CLI::App& app, int& status);
void AddRecordCommand(CLI::App& app, int& status);
void AddLearnCommand(CLI::App& app, int& status);
void AddForgetCommand(CLI::App& app, int& status);
void AddProtocolsCommand(CLI::App& app, int& status);
void AddProtocolCommand(CLI::App& app, int& status);
void AddSendCommand(CLI::App& app, int& status);
void AddInstallCommand(CLI::App& app, int& status);
void AddCalibrateCommand(CLI::App& app, int& status);
void AddSettingsCommand(CLI::App& app, int& status);
void AddSynthCommand(CLI::App& app, int& status);

}  // namespace keplo::cli
