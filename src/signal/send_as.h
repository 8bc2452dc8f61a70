#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo {

// The value of SENDAS=, for codes that are sent in another way than sync, digits and repeats of a section
// say. Its words stand apart by blanks: a way, which holds for all codes that can be sent in it, notes, each
// of which tells the way of a single code, and the period of frames.

/// RC6: a toggle of double length after the fourth digit, which each transmission turns over.
inline constexpr std::string_view kSendAsRc6 = "RC6";

/// The way of codes of two alternating frames.
/// @param digits of one frame
/// @param fromSecond whether the second half of the code was heard first, and goes out first: the two
/// parts of a message look alternating, but have an order
std::string SendInTurns(std::size_t digits, bool fromSecond = false);

/// Whether a code is two alternating frames, by its way; and if so, whether the second half goes out first.
bool IsSentInTurns(std::string_view code, std::string_view way);
bool IsSentFromSecond(std::string_view way);

/// A way as it holds for all codes of a section: which frame goes out first is a matter of each of them.
std::string_view WayOfAll(std::string_view way);

/// The word for frames that follow each other at one period, however long they are.
/// @param slots from the first slot of a frame to the first of the next
std::string SendEvery(int slots);

/// The period of frames, slots; 0 where the silence between them is what REPEAT and GREPEAT say.
int PeriodOf(std::string_view sendAs);

/// The value without ways and notes, which the first analysis does not receive.
std::string WithoutWays(std::string_view sendAs);

/// The way in which a code is sent, by a note or by what holds for all; empty for the usual one.
/// @param code digits without the leading G; of RC5 with 0 for the toggle digit
/// @param sendAs the value of SENDAS=
std::string_view WayOf(std::string_view code, std::string_view sendAs);

/// A note: the way, which may be the usual one, and a checksum of the digits. But for the way it consists of
/// signs that no name and no code has, so that a search for one never ends in it.
std::string NoteOfWay(std::string_view code, std::string_view way);

/// Whether a word of the value is a note.
bool IsNoteOfWay(std::string_view word);

/// Whether a word of the value is the note of a code.
bool IsNoteOn(std::string_view code, std::string_view word);

}  // namespace keplo
