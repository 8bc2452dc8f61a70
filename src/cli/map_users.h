#pragma once

#include <string>

namespace keplo::cli {

/// Reports which other programs of this user have the event map of an application path open, since a host or
/// monitor takes in changes by itself.
void ReportMapUsers(const std::string& appPathOption);

}  // namespace keplo::cli
