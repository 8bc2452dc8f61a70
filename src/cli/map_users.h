#pragma once

#include <string>

namespace keplo::cli {

/// Tells which other programs have the event map of an application path open, where a host or monitor takes a
/// change in by itself. Those of other users cannot be seen and are left out.
void TellWhoTakesItIn(const std::string& appPathOption);

}  // namespace keplo::cli
