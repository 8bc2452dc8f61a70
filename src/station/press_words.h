#pragma once

#include <string>
#include <string_view>

#include "shell/keplo.h"

namespace keplo {

/// What a person at the command line can do about a press that ended without a code; empty where nothing
/// helps.
/// @param appPath as TypedCommand takes it
std::string WhatToDo(Stage stage, std::string_view appPath);

/// Why a press raised no event, for a person; empty if it raised one.
std::string WhyNoEvent(const TickReport& tick);

}  // namespace keplo
