#pragma once

#include <CLI/CLI.hpp>

#include "line/shaping/shaper.h"

namespace keplo {

/// Adds --sample-time, --no-shape and --hold: how recordings become samples.
void AddLineOptions(CLI::App& command, LineOptions& options);

}  // namespace keplo
