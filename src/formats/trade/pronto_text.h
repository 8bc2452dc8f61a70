#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "formats/remote.h"

namespace keplo::trade {

/// Gives the key what the words of a Pronto code say.
/// @return empty, or what is wrong with them
std::string TakePronto(std::span<const std::uint16_t> words, RemoteKey& key);

/// TakePronto for text in hex, with blanks or without.
std::string TakeProntoText(std::string_view text, RemoteKey& key);

/// The words of a key as hex; empty if it is too long for the format.
std::string ProntoText(const RemoteKey& key);

}  // namespace keplo::trade
