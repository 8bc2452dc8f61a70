#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace keplo::cli {

/// A code in an index file.
struct CodeToLearn {
  std::string Place;           // in the file, for messages
  std::string Protocol, Code;  // section, and digits without the leading G
  std::string Name;            // only letters, digits, - and _
};

/// Parses an index, a JSON array of objects, see TeachIndex. Unknown fields are ignored.
/// @param indexFile name of the file, for messages
/// @throws Failure with the entry if the text is not such an array, or a protocol is unknown
std::vector<CodeToLearn> ParseIndex(std::string_view text, const std::string& indexFile);

/// Parses the contents of a file.
/// @throws Failure also if the file cannot be read or is too large
std::vector<CodeToLearn> ReadIndexFile(const std::string& indexFile);

}  // namespace keplo::cli
