#pragma once

#include <string>
#include <string_view>

#include "signal/monitored_press.h"
#include "signal/recorded_press.h"

namespace keplo {

/// What a stage means to a person, for a press that gave no code: "no-timing (…)".
std::string DescribeStage(Stage stage);

/// What it means alone, without the stage's name: "the capture is too short".
std::string_view MeaningOf(Stage stage);

/// Why a recorded press has no code that could be learned, for a person; empty if it has one.
std::string WhyNoCode(const RecordReading& reading);

}  // namespace keplo
