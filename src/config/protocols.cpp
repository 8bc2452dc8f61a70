#include "config/protocols.h"

#include "config/numbers.h"
#include "config/sections.h"

namespace keplo {

namespace {

constexpr std::string_view kClosingName = "END";  // in capitals; [End] would be a protocol

/// Reads the values of a section one behind the other.
class KeyWalk {
 public:
  KeyWalk(std::string_view text, int position) : text_(text), position_(position) {}

  bool Take(std::string_view key, std::string& pattern) {
    if (!Find(key)) return false;
    pattern = GetLineAt(text_, position_);
    return true;
  }

  bool Take(std::string_view key, std::int16_t& number) {
    if (!Find(key)) return false;
    number = WithoutFraction<std::int16_t>(GetLineAt(text_, position_));
    return true;
  }

 private:
  bool Find(std::string_view key) {
    position_ = FindNoCase(key, text_, position_);
    return position_ != kNowhere;
  }

  std::string_view text_;
  int position_;
};

}  // namespace

SectionWalk WalkSections(std::string_view text) {
  SectionWalk walk;
  int position = FindNoCase("[General]", text, 1);
  if (position == kNowhere) walk.Ended = WalkEnd::NoGeneral;
  while (position != kNowhere) {
    position = FindNoCase("[", text, position);
    const std::string_view name = SectionNameAt(text, position);
    if (name == kClosingName) break;
    if (position == kNowhere) {
      walk.Ended = WalkEnd::NoMoreHeaders;
    } else {
      walk.Names.emplace_back(name);
    }
  }
  return walk;
}

bool IsWhole(std::string_view text) { return WalkSections(text).Ended == WalkEnd::ClosingHeader; }

std::vector<std::string> ListProtocols(std::string_view text) { return WalkSections(text).Names; }

bool LoadProtocolParams(std::string_view text, std::string_view protocol, ProtocolParams& params,
                        std::int16_t& protoKind) {
  const std::optional<Section> section = FindSection(text, protocol);
  if (!section) return false;
  KeyWalk keys(text, section->Begin);
  if (!keys.Take("GPROTO=", protoKind)) return false;
  params.BitTail = BitTailOf(protoKind);
  return keys.Take("SENDPLS=", params.SENDPLS) && keys.Take("REPEAT=", params.REPEAT) &&
         keys.Take("BITG=", params.BITG) && keys.Take("BIT0=", params.BIT0) &&
         keys.Take("BIT1=", params.BIT1) && keys.Take("GREPEAT=", params.GREPEAT);
}

}  // namespace keplo
