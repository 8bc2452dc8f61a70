#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "formats/remote.h"
#include "remotes/section_signal.h"

namespace keplo {

/// A code that the receiver reads though no two digit patterns alone send it: RC6, or two alternating frames.
struct HeardCode {
  SectionSignal Section;  // with its repeats, and with SENDAS as it holds for all codes of its kind
  std::string Digits;
  std::string SendAs;  // the way of this one, of which a section may need a note
};

/// What the receiver makes of the lengths of a held key.
/// @param lengths of a press; a closing space is the gap
/// @return none for what is read otherwise or not at all
std::optional<HeardCode> HeardCodeOf(const PulseTrain& lengths);

/// The line code in which the monitor reads the digits of a command that was learned from what its section
/// sends; none if it reads others.
std::optional<std::int16_t> KindHeard(const SectionSignal& section, const std::string& digits);

inline bool IsHeard(const SectionSignal& section, const std::string& digits) {
  return KindHeard(section, digits).has_value();
}

}  // namespace keplo
