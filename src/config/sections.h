#pragma once

#include <optional>
#include <string_view>

#include "config/cfg_text.h"

namespace keplo {

/// The text between two headers; positions count from 1.
struct Section {
  int Begin = 0;        // just after the ] of its header
  int End = 0;          // the [ of the next header; after the last character if there is none
  bool Closed = false;  // whether there is a next header
};

/// The section whose contents begin at a position.
Section SectionFrom(std::string_view text, int begin);

/// The first section of a name from a position on, in any letter case.
std::optional<Section> FindSection(std::string_view text, std::string_view name, int start = 1);

/// The first section of a name after [General], for changes: text before [General] is never changed, even if
/// it looks like a section.
std::optional<Section> FindSectionToChange(std::string_view text, std::string_view name);

/// The section of a protocol from a position on; none if it is [General] or no header follows it.
std::optional<Section> FindProtocolSection(std::string_view text, std::string_view name, int start);

/// Whether a name is that of the section of settings, which has no commands.
bool IsGeneral(std::string_view protocol);
/// Whether a name is that of the read-only section that new protocols are copied from.
bool IsTemplate(std::string_view protocol);
/// The last entry of the window's protocol list: not a section, but the key press recorded last.
inline constexpr std::string_view kRecorded = "Recorded";
bool IsRecorded(std::string_view protocol);

/// The section name at a position: the rest of the line without its last character, which is the ].
std::string_view SectionNameAt(std::string_view text, int position);

}  // namespace keplo
