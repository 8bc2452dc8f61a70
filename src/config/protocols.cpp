#include "config/protocols.h"

#include "config/carrier.h"
#include "config/cfg_store.h"
#include "config/key_table.h"
#include "config/sections.h"
#include "config/send_as_line.h"

namespace keplo {

namespace {

constexpr std::string_view kClosingName = "END";  // in capitals; [End] would be a protocol

}  // namespace

SectionWalk WalkSections(std::string_view text) {
  SectionWalk walk;
  std::size_t characters = 0;
  int position = FindNoCase("[General]", text, 1);
  if (position == kNowhere) walk.Ended = WalkEnd::NoGeneral;
  while (position != kNowhere) {
    position = FindNoCase("[", text, position);
    const std::string_view name = SectionNameAt(text, position);
    characters += name.size();
    if (name == kClosingName) {
      const std::size_t bracket = text.rfind(']');
      walk.IsWhole = bracket != std::string_view::npos && static_cast<int>(bracket) >= position;
      break;
    }
    if (position == kNowhere) {
      walk.Ended = WalkEnd::NoMoreHeaders;
    } else if (characters > kMostCharacters) {
      walk.Ended = WalkEnd::NestedHeaders;
      break;
    } else {
      walk.Names.emplace_back(name);
      // Just after the ] that ends the name.
      const int begin =
          name.empty() ? position + 1 : static_cast<int>(name.data() + name.size() - text.data()) + 2;
      walk.Places.push_back(SectionFrom(text, begin));
    }
  }
  return walk;
}

bool IsWhole(std::string_view text) { return WalkSections(text).IsWhole; }

std::vector<std::string> ListProtocols(std::string_view text) { return WalkSections(text).Names; }

void TakeParameter(const ParameterKey& key, std::string_view value, ProtocolParams& params) {
  if (key.Number != nullptr) {
    params.*key.Number = WithoutFraction<std::int16_t>(value);
  } else {
    params.*key.Pattern = value;
  }
}

bool LoadProtocolParams(std::string_view text, std::string_view protocol, ProtocolParams& params,
                        std::int16_t& protoKind) {
  const std::optional<Section> section = FindSection(text, protocol);
  if (!section) return false;
  int position = FindNoCase(kGenericKey, text, section->Begin);
  if (position == kNowhere) return false;
  protoKind = WithoutFraction<std::int16_t>(GetLineAt(text, position));
  params.BitTail = BitTailOf(protoKind);
  for (const ParameterKey& key : kParameterKeys) {
    position = FindNoCase(key.Search, text, position);
    if (position == kNowhere) return false;
    TakeParameter(key, GetLineAt(text, position), params);
  }
  params.SENDAS = SendAsOf(text, *section);
  params.Carrier = CarrierOf(text, protocol);
  return true;
}

}  // namespace keplo
