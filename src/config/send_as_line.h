#pragma once

#include <string>
#include <string_view>

#include "config/sections.h"

namespace keplo {

// A section may have a key SENDAS= after GREPEAT=, among its commands: nothing that searches the other keys
// or changes them comes by it. It tells how codes are sent where the other keys cannot, see send_as.h.

/// The value of SENDAS= in a section; empty without one.
std::string SendAsOf(std::string_view text, const Section& section);

/// The line of the key with its line end; empty for a section that sends as its other keys say.
std::string SendAsLine(std::string_view value);

/// A text in which a section sends a code in some way, and all its other codes as before: a section without
/// commands and without SENDAS= is made for such codes and tells the way for all of them, any other one gets
/// a note on this code in the line, as does a code that goes out with its second half first. It goes after
/// the commands, so that a search for their names and codes finds them first.
/// @param code with its leading G
/// @param way empty for the usual one
std::string WithWayOf(const std::string& text, std::string_view protocol, std::string_view code,
                      std::string_view way);

/// A text in which the line of a section has no notes on codes that the section does not hold any more.
std::string WithoutStaleWays(const std::string& text, std::string_view protocol);

/// A text in which a section has no period of frames, so that REPEAT and GREPEAT tell the silence again.
std::string WithoutPeriod(const std::string& text, std::string_view protocol);

}  // namespace keplo
