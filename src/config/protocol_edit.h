#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "config/cfg_store.h"
#include "signal/protocol_params.h"

namespace keplo {

/// A protocol section as a user sets it up; BitTail does not count.
struct ProtocolDraft {
  std::string Name, Description;
  std::int16_t ProtoKind = 0;  // GPROTO=
  ProtocolParams Params;
};

/// Why a protocol cannot be stored, changed or deleted.
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
  KeyInDescription,  // a key that the readers of a section would find there
  LineBreakInDescription,
  BitG,
  Bit0,
  Bit1,
  NoSection,             // no complete section of that name with a header after it
  NoTemplate,            // no [Template], before which a new section is inserted
  LineEnds,              // a line where the change would begin does not end in CR LF
  HeaderLine,            // the line of the header contains other text
  SectionBeforeGeneral,  // another section of that name before [General] is the one that is read
  DuplicateSection,      // a second section of that name, ignoring case; Line is that of its header
  HeaderMissing,         // the keys occur twice, so a header is damaged; Line is that of the second GPROTO=
  CommandAmongKeys       // Line holds a command among the keys that an edit replaces
};

/// A refusal and the line of the file that it concerns, from 1; 0 if there is none.
struct ProtocolResult {
  ProtocolRefusal Refused = ProtocolRefusal::None;
  int Line = 0;

  ProtocolResult() = default;
  ProtocolResult(ProtocolRefusal refused, int line = 0) : Refused(refused), Line(line) {}

  bool Done() const { return Refused == ProtocolRefusal::None; }
  bool operator==(ProtocolRefusal refused) const { return Refused == refused; }
};

/// The message for the user; empty if nothing was refused.
std::string RefusalText(const ProtocolResult& result);

/// Refuses to edit Template and Recorded, in any letter case.
ProtocolRefusal CheckProtocolEdit(std::string_view protocol);
/// Refuses to delete them.
ProtocolRefusal CheckProtocolDelete(std::string_view protocol);
/// Accepts a trimmed, unused name of 3 to 12 letters, digits, - and _. The names of sections that are not
/// protocols count as used.
ProtocolRefusal CheckProtocolName(std::string_view text, const std::string& name);
/// Checks everything but the name. If REPEAT and GREPEAT both specify a silence, GREPEAT is set to REPEAT.
ProtocolRefusal CheckProtocolDraft(ProtocolDraft& draft);

/// Reads a section strictly: it must have all its lines in order, GPROTO= must be one of the generic
/// protocols and GREPEAT= a number.
/// @return empty if it does not
std::optional<ProtocolDraft> LoadProtocol(std::string_view text, std::string_view protocol);

/// A number as it is written after a key: a blank or the minus sign, then the digits.
std::string KeyNumber(int number);

/// A change of a text: a block replaces the characters First to Last or, if Last is below First, is inserted
/// before First. Positions count from 1.
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

/// The lines of a section between header and commands; the last one without its line end.
std::string ParameterLines(const ProtocolDraft& draft);

/// Inserts a new section, with the placeholder as its only command, before [Template].
SectionChange NewSection(std::string_view text, const ProtocolDraft& draft);

/// Replaces all lines of a section after its header down to GREPEAT=, including comments. A command among
/// them is a refusal.
SectionChange EditedSection(std::string_view text, const ProtocolDraft& draft);

/// Applies an edit. If slot or silences differ from before, the section also loses its frame period.
std::string WithEdit(const std::string& text, const ProtocolDraft& draft, const Splice& edit);

/// Removes a section, from its header to the line before the next header.
SectionChange WithoutSection(std::string_view text, std::string_view protocol);

/// Index of a protocol, from 0; the number of protocols if there is no such protocol.
int ProtocolIndexOf(std::string_view text, std::string_view protocol);

/// The text with another protocol selected in [General], so that this and a change of the sections are saved
/// together; unchanged if it has no PROTOCOL= key.
std::string WithCurrentProtocol(const std::string& text, int index);

// Complete operations with all their checks; each saves at once.
// @throws Failure if the text would exceed its limit or the save fails; see ReplaceAndSave

/// Also selects the new protocol, which the window will then start with.
ProtocolResult AddProtocol(CfgStore& store, ProtocolDraft draft);
ProtocolResult EditProtocol(CfgStore& store, ProtocolDraft draft);
/// Also selects the first protocol. A text without its closing header is changed only in memory.
ProtocolResult DeleteProtocol(CfgStore& store, std::string_view protocol);

}  // namespace keplo
