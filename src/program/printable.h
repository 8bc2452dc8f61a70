#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace keplo {

/// Makes a text from a file, database or command line safe for a line of output: line ends, control
/// characters and characters that change the writing direction become blanks. Everything else is kept, even
/// bytes that are not UTF-8.
std::string Printable(std::string_view text);

/// The same for a line of JSON, which can only have such characters in its strings, where they are escaped
/// instead.
std::string PrintableJson(std::string_view json);

/// The lines of a text, each passed through Printable and trimmed.
std::vector<std::string> PrintableLines(std::string_view text);

}  // namespace keplo
