#pragma once

#include <string>

#include "shell/keplo.h"
#include "signal/recorded_press.h"

namespace keplo {

/// What a stage means to a person, for a press that gave no code: "no-timing (…)".
std::string DescribeStage(Stage stage);

/// What a person can do about a press that ended without a code; empty where nothing helps.
std::string WhatToDo(Stage stage);

/// Why a press raised no event, for a person; empty if it raised one.
std::string WhyNoEvent(const TickReport& tick);

/// Why a recorded press has no code that could be learned, for a person; empty if it has one.
std::string WhyNoCode(const RecordReading& reading);

}  // namespace keplo
