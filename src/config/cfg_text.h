#pragma once

#include <string>
#include <string_view>

namespace keplo {

// Positions in a text count from 1; 0 stands for a place that is not there. A position that lies outside the
// text finds nothing, and a walk ends at the ends of the text.

constexpr int kNowhere = 0;

/// Searches a text from a position on, with A to Z and a to z alike.
///
/// The last character of the text begins a match only if the search starts there. An empty needle is found
/// at the start at once.
/// @param start position from 1
/// @return the position just after the first match, not that of the match; 0 if there is none
int FindNoCase(std::string_view needle, std::string_view text, int start);

/// The text from a position up to the next CR, without blanks around it; a part of the argument, so it lives
/// as long as that text stays unchanged.
///
/// The character at the position itself is never taken for the CR: on an empty value without a blank the line
/// below comes along. Without a CR after the position the text ends the line.
std::string_view GetLineAt(std::string_view text, int position);

/// A new text with the piece placed so that it begins at the position, from 1 to the length plus 1; a
/// position outside is drawn to the nearer end.
std::string InsertText(std::string_view text, std::string_view piece, int position);

/// A new text without the characters first to last, both included. A last below first removes nothing.
std::string RemoveText(std::string_view text, int first, int last);

/// Removes the blanks at both ends, in place. No other white space counts as a blank.
/// @return the argument
const std::string& TrimBoth(std::string& text);

/// The text without the blanks at its ends, as a part of the argument.
std::string_view Trimmed(std::string_view text);

/// Position of the first such character at or after a position; 0 if there is none.
int SeekForward(std::string_view text, int position, char character);

/// Position of the last such character at or before a position; 0 if there is none. A position after the
/// text starts at its last character.
int SeekBack(std::string_view text, int position, char character);

/// Number of the line, from 1, in which the character of a position stands.
int LineNumber(std::string_view text, int position);

/// The character with A to Z as a to z; others, and those of other alphabets, stay.
constexpr char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

/// Whether two texts are equal with A to Z and a to z alike.
bool EqualNoCase(std::string_view left, std::string_view right);

}  // namespace keplo
