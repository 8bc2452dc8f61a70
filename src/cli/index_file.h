#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace keplo::cli {

/// A code of an index file, as a command that can be learned.
struct CodeToLearn {
  std::string Place;           // in the file
  std::string Protocol, Code;  // section, and digits without a G
  std::string Name;            // of letters, digits, - and _ alone
};

/// Reads an index: a JSON array of objects, see TeachIndex. What an entry holds besides is left out.
/// @param indexFile its name, for the texts
/// @throws Failure that names the entry if the text is no such array or names an unknown protocol
std::vector<CodeToLearn> ParseIndex(std::string_view text, const std::string& indexFile);

/// The same with the content of a file.
/// @throws Failure too if it cannot be read or is larger than an index can be
std::vector<CodeToLearn> ReadIndexFile(const std::string& indexFile);

}  // namespace keplo::cli
