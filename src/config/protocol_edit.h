#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

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
  NoSection,        // no whole section of that name, with a header after it
  NoTemplate,       // no section that a new one could stand before
  LineEnds,         // a line where the change would begin does not end in CR LF
  HeaderLine,       // the line of the header holds more than the header
  SectionTwice,     // another section of that name stands before [General], and is the one that is read
  SectionTwins,     // a second section of that name, in whatever case; the line is that of its header
  HeaderMissing,    // the section has its keys twice: a header is damaged. The line is that of the second
                    // GPROTO=
  CommandAmongKeys  // a command stands in its line among the keys that an edit replaces
};

/// A refusal and the line of the file that it is about, from 1; 0 if it is about none.
struct ProtocolResult {
  ProtocolRefusal Refused = ProtocolRefusal::None;
  int Line = 0;

  ProtocolResult() = default;
  ProtocolResult(ProtocolRefusal refused, int line = 0) : Refused(refused), Line(line) {}

  bool Done() const { return Refused == ProtocolRefusal::None; }
  bool operator==(ProtocolRefusal refused) const { return Refused == refused; }
};

/// What to tell the user; empty if nothing was refused.
std::string RefusalText(const ProtocolResult& result);

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

/// A number after a key: a blank or the minus sign, then the digits.
std::string KeyNumber(int number);

/// A change of a text: its characters first to last give way to a block. With last below first the block goes
/// in before first. Positions count from 1.
struct Splice {
  int First = 0, Last = 0;
  std::string Block;

  std::string In(std::string_view text) const;
};

/// A splice, or why there is none.
struct SectionChange {
  ProtocolResult Refused;
  Splice Change;

  SectionChange(ProtocolRefusal refused) : Refused(refused) {}
  SectionChange(ProtocolResult refused) : Refused(refused) {}
  SectionChange(Splice change) : Change(std::move(change)) {}
};

/// The lines of a section between header and commands, as a save writes them; the last one without its line
/// end.
std::string ParameterLines(const ProtocolDraft& draft);

/// A new section, with the placeholder for a command, before the line end that [Template] stands after.
SectionChange NewSection(std::string_view text, const ProtocolDraft& draft);

/// Other parameters for a section: all lines after its header down to the one of GREPEAT= go, which holds for
/// comments, while a command among them is a refusal.
SectionChange EditedSection(std::string_view text, const ProtocolDraft& draft);

/// The text with that edit. Other slots or silences than before end the period that frames were sent at.
std::string WithEdit(const std::string& text, const ProtocolDraft& draft, const Splice& edit);

/// A section goes, from its header through the line before the next header.
SectionChange WithoutSection(std::string_view text, std::string_view protocol);

/// Place of a protocol in the list of a text, from 0; the number of protocols if it is none of them.
int ProtocolIndexOf(std::string_view text, std::string_view protocol);

/// The text with the protocol of an index as the one that the window starts with, so that a change of the
/// sections and this one reach the file together; the same text if it has no place for it.
std::string WithCurrentProtocol(const std::string& text, int index);

// The three operations without a window, with all their checks. Each saves at once.
// @throws Failure if the text would grow beyond its limit or the save fails; see ReplaceAndSave

/// The new protocol becomes the one that the window starts with.
ProtocolResult AddProtocol(CfgStore& store, ProtocolDraft draft);
ProtocolResult EditProtocol(CfgStore& store, ProtocolDraft draft);
/// The first protocol becomes the one that the window starts with. A text without its closing header is
/// changed in memory alone.
ProtocolResult DeleteProtocol(CfgStore& store, std::string_view protocol);

}  // namespace keplo
