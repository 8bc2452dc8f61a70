#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/sections.h"
#include "signal/protocol_params.h"

namespace keplo {

/// How a walk over the sections ended.
enum class WalkEnd {
  ClosingHeader,  // at [END], as it should
  NoGeneral,      // there is no [General] to start from
  NoMoreHeaders,  // the text ran out of sections before [END]
  NestedHeaders   // one [ after another in a line, each of which would begin a section
};

struct SectionWalk {
  std::vector<std::string> Names;
  std::vector<Section> Places;  // of each name
  WalkEnd Ended = WalkEnd::ClosingHeader;

  /// Whether the walk came to [END] and its ] is the last one, after which a save cuts the text.
  bool IsWhole = false;
};

/// The sections after [General] up to [END], in the order of the file. Template is one of them. Names that
/// are longer in all than a text can be end the walk.
SectionWalk WalkSections(std::string_view text);

/// Whether the sections can be walked to their end. A save cuts the text after its last header, so that one
/// which is not whole must not be written back.
bool IsWhole(std::string_view text);

/// The names of WalkSections, however the walk ended.
std::vector<std::string> ListProtocols(std::string_view text);

struct ParameterKey;
/// Puts the value of a key in its place; of a number the fraction is dropped.
void TakeParameter(const ParameterKey& key, std::string_view value, ProtocolParams& params);

/// Loads the parameters of a protocol, each key searched from after the one before it. At the first that is
/// not found the load stops: what was read stays, the rest is as it was.
/// @param params of which Carrier is the usual one for a section without a line of it
/// @param protoKind takes the value of GPROTO=
/// @return true if all was read
bool LoadProtocolParams(std::string_view text, std::string_view protocol, ProtocolParams& params,
                        std::int16_t& protoKind);

}  // namespace keplo
