#pragma once

#include <optional>
#include <string_view>

#include "config/cfg_text.h"

namespace keplo {

/// A stretch of the text between two headers; positions count from 1.
struct Section {
  int Begin = 0;        // just after the ] of its header
  int End = 0;          // the [ of the next header; after the last character if there is none
  bool Closed = false;  // there is a next header
};

/// The section whose content begins at a position.
Section SectionFrom(std::string_view text, int begin);

/// The first section of a name from a position on, in any letter case.
std::optional<Section> FindSection(std::string_view text, std::string_view name, int start = 1);

/// The first section of a name after [General], for changes: what stands before [General] is not the
/// program's to change, even if it looks like a section.
std::optional<Section> FindSectionToChange(std::string_view text, std::string_view name);

/// The section of a protocol from a position on: [General] is none, nor is one that no other header ends.
std::optional<Section> FindProtocolSection(std::string_view text, std::string_view name, int start);

/// Whether a section is the one of the settings, which holds no commands.
bool IsGeneral(std::string_view protocol);
/// Whether a section is the one that new protocols begin as; nobody changes it.
bool IsTemplate(std::string_view protocol);
/// The last entry of the window's protocol list: no section, but the place of the key press recorded last.
inline constexpr std::string_view kRecorded = "Recorded";
bool IsRecorded(std::string_view protocol);

/// The section name that begins at a position: the rest of the line without its last character, the ].
std::string_view SectionNameAt(std::string_view text, int position);

}  // namespace keplo
