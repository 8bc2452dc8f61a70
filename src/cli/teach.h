#pragma once

#include <string>

namespace keplo::cli {

/// Learns the codes of an index file: a JSON array of objects with "protocol" (nec, sony..., rc5), "bits" in
/// the order received, and "key" or "name" (with "device" ahead of it where there is one).
/// @return exit code: 1 if a code was not learned, each of which is told
int TeachIndex(const std::string& appPathOption, const std::string& indexFile);

}  // namespace keplo::cli
