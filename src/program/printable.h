#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace keplo {

/// A text from outside (a file, a database, a command line) as it may stand in a line for a person: line
/// ends, escape sequences for the terminal and whatever turns the direction of writing become blanks. All
/// else stays, bytes of older encodings too.
std::string Printable(std::string_view text);

/// A line of JSON that says the same without these characters: they stand in its strings alone, where an
/// escape does as well.
std::string PrintableJson(std::string_view json);

/// The lines of a text of several, each as Printable gives it, without blanks around it.
std::vector<std::string> PrintableLines(std::string_view text);

}  // namespace keplo
