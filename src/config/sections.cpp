#include "config/sections.h"

#include <string>

namespace keplo {

Section SectionFrom(std::string_view text, int begin) {
  const int afterNext = FindNoCase("[", text, begin);
  if (afterNext == kNowhere) return {begin, static_cast<int>(text.size()) + 1, false};
  return {begin, afterNext - 1, true};
}

std::optional<Section> FindSection(std::string_view text, std::string_view name, int start) {
  const int begin = FindNoCase("[" + std::string(name) + "]", text, start);
  if (begin == kNowhere) return std::nullopt;
  return SectionFrom(text, begin);
}

std::optional<Section> FindSectionToChange(std::string_view text, std::string_view name) {
  return FindSection(text, name, FindNoCase("[General]", text, 1));
}

std::optional<Section> FindProtocolSection(std::string_view text, std::string_view name, int start) {
  const std::optional<Section> section = FindSection(text, name, start);
  return section && section->Closed && !IsGeneral(name) ? section : std::nullopt;
}

bool IsGeneral(std::string_view protocol) { return EqualNoCase(Trimmed(protocol), "general"); }
bool IsTemplate(std::string_view protocol) { return EqualNoCase(protocol, "template"); }
bool IsRecorded(std::string_view protocol) { return EqualNoCase(protocol, kRecorded); }

std::string_view SectionNameAt(std::string_view text, int position) {
  std::string_view name = GetLineAt(text, position);
  if (!name.empty()) name.remove_suffix(1);
  return name;
}

}  // namespace keplo
