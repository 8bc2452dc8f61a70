#pragma once

#include <string>

#include "shell/keplo.h"

namespace keplo {

/// What a stage means to a person, for a press that gave no code: "no-timing (…)".
std::string DescribeStage(Stage stage);

/// Why a press raised no event, for a person; empty if it raised one.
std::string WhyNoEvent(const TickReport& tick);

}  // namespace keplo
