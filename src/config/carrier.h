#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace keplo {

// A section may hold a line CARRIER= after its GREPEAT= line, where neither an edit of its parameters nor a
// change of its commands touches it.

/// The carrier that a section is sent with, Hz; kUsualCarrier without a line that tells another.
std::int32_t CarrierOf(std::string_view text, std::string_view protocol);

/// The line of a carrier with its line end; empty for the usual carrier, which needs none.
std::string CarrierLine(std::int32_t hertz);

}  // namespace keplo
