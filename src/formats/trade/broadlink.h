#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/remote.h"

namespace keplo::trade {

/// Bytes of base64, padded rightly or not at all.
/// @return none for a character that is not of it, or a text that is cut
std::optional<std::vector<std::uint8_t>> BytesOfBase64(std::string_view text);
std::optional<std::vector<std::uint8_t>> BytesOfHex(std::string_view text);

/// Gives the key the lengths of a Broadlink code.
/// @return empty, or what is wrong with it
std::string TakeBroadlink(const std::vector<std::uint8_t>& bytes, RemoteKey& key);

/// The press as a Broadlink code in base64.
std::string BroadlinkText(const RemoteKey& key);

}  // namespace keplo::trade
