#pragma once

#include <string>
#include <string_view>

#include "config/sections.h"

namespace keplo {

// A section may have a key SENDAS= among its commands, where searches for the other keys and changes of them
// do not meet it. It specifies how codes are sent if the other keys cannot, see send_as.h.

/// The value of SENDAS= in a section; empty if it has none.
std::string SendAsOf(std::string_view text, const Section& section);

/// The SENDAS= line with its line end; empty for an empty value, which needs no line.
std::string SendAsLine(std::string_view value);

/// The text changed so that a section sends a code in the given way, and its other codes as before. If the
/// section has neither commands nor SENDAS=, the way applies to all its codes; otherwise SENDAS= gets a note
/// on this code, as it does for a code that is sent with its second half first. The line goes after the
/// commands, so that searches for their names and codes find them first.
/// @param code with its leading G
/// @param way empty for the usual one
std::string WithSendAs(const std::string& text, std::string_view protocol, std::string_view code,
                       std::string_view way);

/// The text without SENDAS= notes on codes that the section no longer has.
std::string WithoutStaleSendAs(const std::string& text, std::string_view protocol);

/// The text without the frame period of a section, so that REPEAT and GREPEAT determine the silence again.
std::string WithoutPeriod(const std::string& text, std::string_view protocol);

}  // namespace keplo
