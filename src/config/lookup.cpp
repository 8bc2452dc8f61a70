#include "config/lookup.h"

#include <array>
#include <cstddef>
#include <memory_resource>

#include "config/sections.h"
#include "signal/decode.h"
#include "signal/first_analysis.h"

namespace keplo {

namespace {

constexpr int kHeadLength = 10;  // characters; the text begins with a header, so a match in them is none

}  // namespace

std::optional<FoundCommand> FindCommand(std::string_view text, std::string_view code, int limit,
                                        Analysis readBy) {
  if (code.empty()) return std::nullopt;
  std::array<std::byte, 512> buffer;  // a received press is looked up without the heap
  std::pmr::monotonic_buffer_resource memory(buffer.data(), buffer.size());
  std::pmr::string needle(&memory);
  needle.reserve(code.size() + 2);
  needle.append(1, 'G').append(code);
  if (readBy == Analysis::Second) needle += ',';

  const int match = FindNoCase(needle, text, 1);
  if (match <= limit) return std::nullopt;
  const int comma = SeekForward(text, match - 2, ',');
  const int header = comma == kNowhere ? kNowhere : SeekBack(text, comma + 1, '[');
  if (header == kNowhere) return std::nullopt;
  return FoundCommand{std::string(Trimmed(SectionNameAt(text, header + 1))),
                      std::string(GetLineAt(text, comma + 1))};
}

bool LookupCommand(CfgStore& store, std::string_view code, std::int16_t protoKind, Analysis readBy) {
  std::string stored(code);
  if (protoKind == kRc5 && stored.size() > kToggleBitOffset) stored[kToggleBitOffset] = '0';
  std::optional<FoundCommand> found = FindCommand(store.CfgText, stored, kHeadLength, readBy);
  if (!found) return false;
  store.CurProtocol = std::move(found->Protocol);
  store.CurCommand = std::move(found->Command);
  return !IsGeneral(store.CurProtocol);
}

}  // namespace keplo
