#pragma once

#include <CLI/CLI.hpp>
#include <string_view>

#include "line/shaper.h"
#include "signal/monitor_road.h"

namespace keplo::cli {

/// Adds --sample-time, --no-shape and --hold: how recordings become samples.
void AddLineOptions(CLI::App& command, LineOptions& options);

/// What a stage means to a person, for a press that gave no code: "no-timing (…)".
std::string DescribeStage(Stage stage);

}  // namespace keplo::cli
