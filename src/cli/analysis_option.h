#pragma once

#include <string>
#include <string_view>

#include "cli/open_map.h"
#include "program/arguments.h"
#include "signal/analysis.h"

namespace keplo::cli {

/// Adds --analysis to a command; the name stays empty without it.
void AddAnalysisOption(Command& command, std::string& name);

/// The analysis that the option names.
Analysis AnalysisNamed(std::string_view name);

/// How the monitor and the window of an install read captures.
Analysis AnalysisOf(const OpenConfig& config);

/// What an analysis is called in a line for a person: "first analysis", "second look".
std::string_view WordOf(Analysis analysis);

}  // namespace keplo::cli
