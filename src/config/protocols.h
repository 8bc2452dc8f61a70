#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "signal/protocol_params.h"

namespace keplo {

/// How a walk over the sections ended.
enum class WalkEnd {
  ClosingHeader,  // at [END], as it should
  NoGeneral,      // there is no [General] to start from
  NoMoreHeaders   // the text ran out of sections ahead of [END]
};

struct SectionWalk {
  std::vector<std::string> Names;
  WalkEnd Ended = WalkEnd::ClosingHeader;
};

/// The sections behind [General] up to [END], in the order of the file. Template is one of them.
SectionWalk WalkSections(std::string_view text);

/// Whether the sections can be walked to their end. A save cuts the text behind its last header, so that one
/// which is not whole must not be written back.
bool IsWhole(std::string_view text);

/// The names of WalkSections, however the walk ended.
std::vector<std::string> ListProtocols(std::string_view text);

/// Loads the parameters of a protocol, each key searched from behind the one before it. At the first that is
/// not found the load stops: what was read stays, the rest is as it was.
/// @param protoKind takes the value of GPROTO=
/// @return true if all was read
bool LoadProtocolParams(std::string_view text, std::string_view protocol, ProtocolParams& params,
                        std::int16_t& protoKind);

}  // namespace keplo
