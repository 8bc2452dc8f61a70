#pragma once

#include <string>

namespace keplo::cli {

/// Learns the codes of an index file: a JSON array of objects with "protocol" (nec, sony..., rc5), "bits" in
/// the order received, and "key" or "name" (with "device" before it where there is one).
/// @return the exit code; each code that was not learned is told
int TeachIndex(const std::string& appPathOption, const std::string& indexFile);

}  // namespace keplo::cli
