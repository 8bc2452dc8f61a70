#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/pulse_text.h"

namespace keplo {

/// The presses of the keys of a text of remotes, as far as they have digits or lengths: the whole press that
/// the text has, else the frame and its repeat.
/// @param name what the text was read from, for error texts
/// @param complaints gets what of the text is no press, and why
/// @return none for what is no text of remotes, or a plain list of marks and spaces
/// @throws FormatError for a text of remotes without any such key
std::optional<std::vector<PulseTrain>> PressesOfRemotes(std::string_view text, const std::string& name,
                                                        std::vector<std::string>& complaints);

}  // namespace keplo
