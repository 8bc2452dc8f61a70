#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "signal/protocol_params.h"

namespace keplo {

/// A protocol section as a user sets it up; BitTail is not part of it.
struct ProtocolDraft {
  std::string Name, Description;
  std::int16_t ProtoKind = 0;  // GPROTO=
  ProtocolParams Params;
};

/// Why a protocol is not stored, changed or deleted.
enum class ProtocolRefusal {
  None,
  EditOfTemplate,
  DeleteOfTemplate,
  VirtualProtocol,  // Recorded
  InvalidName,
  NameInUse,
  NameLength,
  SendPls,
  Repeat,
  GRepeat,
  EmptyPattern,
  CommaInDescription,
  BracketInDescription,
  KeyInDescription,   // the one that the readers of a section would find there
  LineInDescription,  // a line end
  BitG,
  Bit0,
  Bit1,
  NoSection,  // no whole section of that name, with a header behind it
  NoTemplate  // no section that a new one could stand ahead of
};

/// What to tell the user; empty if nothing was refused.
std::string_view RefusalText(ProtocolRefusal refusal);

/// Whether the section may be edited: Template and Recorded may not, in any letter case.
ProtocolRefusal CheckProtocolEdit(std::string_view protocol);
/// The same for a delete.
ProtocolRefusal CheckProtocolDelete(std::string_view protocol);
/// A trimmed name of letters, digits, - and _, which no section has, of 3 to 12 characters. The names of the
/// sections that are no protocols are in use.
ProtocolRefusal CheckProtocolName(std::string_view text, const std::string& name);
/// All but the name. Where both repeats have a silence of their own, the one of GREPEAT becomes that of
/// REPEAT.
ProtocolRefusal CheckProtocolDraft(ProtocolDraft& draft);

/// A section read strictly: all its lines must be there, in their order, GPROTO= must be one of the generic
/// protocols and GREPEAT= a number.
/// @return empty if it is not so
std::optional<ProtocolDraft> LoadProtocol(std::string_view text, std::string_view protocol);

/// A number behind a key: a blank or the minus sign, then the digits.
std::string KeyNumber(int number);

/// A change of a text: its characters first to last give way to a block. With last below first the block goes
/// in ahead of first. Positions count from 1.
struct Splice {
  int First = 0, Last = 0;
  std::string Block;

  std::string In(std::string_view text) const;
};

/// A new section, with the placeholder for a command, ahead of the line end that [Template] stands behind.
/// @return empty without [Template]
std::optional<Splice> NewSection(std::string_view text, const ProtocolDraft& draft);

/// Other parameters for a section: all lines from behind its header to the one of GREPEAT= go.
/// @return empty unless the section is whole
std::optional<Splice> EditedSection(std::string_view text, const ProtocolDraft& draft);

/// A section goes, from its header through the line ahead of the next header.
/// @return empty without the section or without a next header
std::optional<Splice> WithoutSection(std::string_view text, std::string_view protocol);

// The three operations without a window, with all their checks. Each saves at once.
// @throws Failure if the text would grow beyond its limit or the save fails; see ReplaceAndSave

/// The new protocol becomes the one that the window starts with.
ProtocolRefusal AddProtocol(CfgStore& store, ProtocolDraft draft);
ProtocolRefusal EditProtocol(CfgStore& store, ProtocolDraft draft);
/// The first protocol becomes the one that the window starts with.
ProtocolRefusal DeleteProtocol(CfgStore& store, std::string_view protocol);

}  // namespace keplo
