#pragma once

#include <string>
#include <string_view>

namespace keplo {

// Positions in a text count from 1; 0 means "not found". Searches from a position outside the text find
// nothing.

constexpr int kNowhere = 0;

/// Searches a text from a position on, ignoring the case of A to Z.
///
/// A match begins at the last character of the text only if the search starts there. An empty needle matches
/// at the start.
/// @param start position from 1
/// @return the position just after the first match, not that of the match itself; 0 if there is none
int FindNoCase(std::string_view needle, std::string_view text, int start);

/// The text from a position up to the next CR, without the blanks around it; a view into the argument.
///
/// The character at the position itself is never taken for the CR: after a key with neither value nor blank,
/// the result includes the next line. Without a CR the line ends with the text.
std::string_view GetLineAt(std::string_view text, int position);

/// The text with a piece inserted so that it begins at the position, 1 to the length plus 1; a position
/// outside is clamped.
std::string InsertText(std::string_view text, std::string_view piece, int position);

/// The text without the characters first to last, inclusive. A last below first removes nothing.
std::string RemoveText(std::string_view text, int first, int last);

/// Removes blanks, but no other white space, from both ends in place.
/// @return the argument
const std::string& TrimBoth(std::string& text);

/// The text without the blanks at both ends; a view into the argument.
std::string_view Trimmed(std::string_view text);

/// Position of the first occurrence of a character at or after a position; 0 if there is none.
int SeekForward(std::string_view text, int position, char character);

/// Position of the last occurrence of a character at or before a position; 0 if there is none. A position
/// after the end starts at the last character.
int SeekBack(std::string_view text, int position, char character);

/// Number, from 1, of the line that contains a position.
int LineNumber(std::string_view text, int position);

/// A to Z as a to z; any other character unchanged.
constexpr char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

/// Whether two texts are equal, ignoring the case of A to Z.
bool EqualNoCase(std::string_view left, std::string_view right);

}  // namespace keplo
