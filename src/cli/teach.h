#pragma once

#include <string>

namespace keplo::cli {

/// Learns the codes in an index file: a JSON array of objects with "protocol" (nec, sony..., rc5), "bits" in
/// the order received, and "key" or "name" (prefixed with "device" if there is one). Codes that were not
/// learned are reported.
/// @return the exit code
int TeachIndex(const std::string& appPathOption, const std::string& indexFile);

}  // namespace keplo::cli
