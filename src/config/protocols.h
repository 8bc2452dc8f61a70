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
  ClosingHeader,  // at [END], as expected
  NoGeneral,      // there is no [General] to start from
  NoMoreHeaders,  // the text ends before [END]
  NestedHeaders   // a line with one [ after another, each of which would begin a section
};

struct SectionWalk {
  std::vector<std::string> Names;
  std::vector<Section> Places;  // the sections of these names
  WalkEnd Ended = WalkEnd::ClosingHeader;

  /// Whether the walk reached [END] and its ] is the last one, after which a save cuts the text.
  bool IsWhole = false;
};

/// The sections after [General] up to [END], including Template, in the order of the file. The walk also ends
/// when the names add up to more than the longest text.
SectionWalk WalkSections(std::string_view text);

/// Whether the sections can be walked to their end. A save cuts the text after its last header, so a text
/// that is not whole must not be written back.
bool IsWhole(std::string_view text);

/// The names of WalkSections, however the walk ended.
std::vector<std::string> ListProtocols(std::string_view text);

struct ParameterKey;
/// Stores the value of a key, without the fraction if it is a number.
void TakeParameter(const ParameterKey& key, std::string_view value, ProtocolParams& params);

/// Loads the parameters of a protocol. The search for each key begins after the previous one and the load
/// stops at the first that is missing; parameters not read by then keep their values.
/// @param protoKind receives the value of GPROTO=
/// @return whether all keys were found
bool LoadProtocolParams(std::string_view text, std::string_view protocol, ProtocolParams& params,
                        std::int16_t& protoKind);

}  // namespace keplo
