#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "cli/open_map.h"
#include "signal/analysis.h"

namespace keplo::cli {

/// Adds --analysis to a command.
void AddAnalysisOption(CLI::App& command, std::optional<Analysis>& analysis);

/// How the monitor and the window of an install read captures.
Analysis AnalysisOf(const OpenConfig& config);

/// What an analysis is called in a line for a person: "first analysis", "second look".
std::string_view WordOf(Analysis analysis);

}  // namespace keplo::cli
