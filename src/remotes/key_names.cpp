#include "remotes/key_names.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "config/cfg_text.h"
#include "config/commands.h"
#include "config/protocols.h"
#include "config/sections.h"

namespace keplo {

namespace {

constexpr std::size_t kLongestKeyName = 60;
constexpr std::size_t kShortestSectionName = 3, kLongestSectionName = 12;
constexpr std::string_view kKeyPrefix = "KEY_";

bool MayStand(char character) {
  const char lower = LowerCase(character);
  return (lower >= 'a' && lower <= 'z') || (character >= '0' && character <= '9') || character == '-' ||
         character == '_';
}

bool IsLetterOrDigit(char character) { return MayStand(character) && character != '-' && character != '_'; }

/// Whether a byte goes on with a character of UTF-8 that an earlier one began.
bool GoesOn(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80U; });
}

std::string Numbered(const std::string& name, char mark, std::size_t number) {
  return name + mark + std::to_string(number);
}

std::string CleanSectionName(std::string_view remote) {
  std::string name;
  for (const char character : CleanName(remote)) {
    if (character == '_' && (name.empty() || name.back() == '_')) continue;
    name += character;
  }
  name = name.substr(0, kLongestSectionName);
  name.erase(name.find_last_not_of("_-") + 1);
  return name;
}

}  // namespace

std::string InLowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerCase);
  return lower;
}

bool SaysNothing(std::string_view name) {
  const std::string clean = CleanName(name);
  return clean.empty() || (!IsAscii(name) && std::none_of(clean.begin(), clean.end(), IsLetterOrDigit));
}

std::string CleanName(std::string_view name) {
  std::string clean;
  char before = 'A';
  for (const char byte : Trimmed(name)) {
    const bool inside = GoesOn(byte) && static_cast<unsigned char>(before) >= 0x80U;
    if (!inside) clean += MayStand(byte) ? byte : '_';
    before = byte;
  }
  return clean.substr(0, kLongestKeyName);
}

bool KeyNames::Stands(const std::string& name) const {
  return EqualNoCase(name, kPlaceholderName) || words_.find(InLowerCase(name)) != std::string::npos;
}

std::string KeyNames::Next(const std::optional<std::string>& wanted, std::size_t number) {
  std::string name = CleanName(wanted.value_or(""));
  if (SaysNothing(wanted.value_or(""))) name = std::string(kKeyPrefix) + std::to_string(number);
  std::string holding = Stands(name) ? std::string(kKeyPrefix) + name : name;
  if (Stands(holding) || IsTaken(holding)) {
    const std::string base = holding;
    std::size_t& count = counts_[InLowerCase(base)];
    count = std::max<std::size_t>(count, 1);
    do holding = Numbered(base, '_', ++count);
    while (Stands(holding) || IsTaken(holding));
  }
  taken_.insert(InLowerCase(holding));
  return holding;
}

std::vector<std::size_t> LinesInOrder(const std::vector<std::string>& names) {
  std::unordered_map<std::string, std::size_t> places;
  std::vector<std::string> lower;
  for (const std::string& name : names) {
    places.emplace(InLowerCase(name), lower.size());
    lower.push_back(InLowerCase(name));
  }
  std::vector<std::size_t> order;
  std::vector<bool> placed(names.size());
  // A name within another is shorter, so that this ends.
  const std::function<void(std::size_t)> place = [&](std::size_t at) {
    if (placed[at]) return;
    placed[at] = true;
    const std::string& name = lower[at];
    for (std::size_t length = 1; length < name.size(); ++length) {
      for (std::size_t begin = 0; begin + length <= name.size(); ++begin) {
        const auto inner = places.find(name.substr(begin, length));
        if (inner != places.end()) place(inner->second);
      }
    }
    order.push_back(at);
  };
  for (std::size_t at = 0; at < names.size(); ++at) place(at);
  return order;
}

SectionNames::SectionNames(std::string_view text) : text_(text) {
  for (const std::string_view reserved : {"general", "end", "template", "recorded"}) {
    taken_.emplace(reserved);
  }
  for (const std::string& name : ListProtocols(text)) taken_.insert(InLowerCase(name));
}

bool SectionNames::IsFree(const std::string& name) const {
  return name.size() >= kShortestSectionName && taken_.count(InLowerCase(name)) == 0 &&
         !FindSection(text_, name);
}

std::string SectionNames::Next(std::string_view remote) {
  std::string base = CleanSectionName(remote);
  if (std::none_of(base.begin(), base.end(), IsLetterOrDigit)) base = "Remote";
  std::string name = base;
  std::size_t& count = counts_[InLowerCase(base)];
  if (count == 0 && base.size() >= kShortestSectionName) count = 1;
  while (!IsFree(name)) {
    const std::string number = std::to_string(++count);
    name = base.substr(0, kLongestSectionName - 1 - number.size()) + "-" + number;
  }
  taken_.insert(InLowerCase(name));
  return name;
}

}  // namespace keplo
