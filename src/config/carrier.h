#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace keplo {

// A section may have a CARRIER= line after its GREPEAT= line, where edits of its parameters and commands
// leave it alone.

/// The carrier frequency that the codes of a section are sent with, Hz; kUsualCarrier if it does not name
/// one.
std::int32_t CarrierOf(std::string_view text, std::string_view protocol);

/// The CARRIER= line with its line end; empty for the usual carrier, which needs no line.
std::string CarrierLine(std::int32_t hertz);

}  // namespace keplo
