#include <string>

#include "config/protocol_edit.h"

namespace keplo {

std::string RefusalText(const ProtocolResult& result) {
  const std::string line = "line " + std::to_string(result.Line);
  switch (result.Refused) {
    case ProtocolRefusal::None:
      break;
    case ProtocolRefusal::EditOfTemplate:
      return "The Template protocol cannot be edited";
    case ProtocolRefusal::DeleteOfTemplate:
      return "The Template protocol cannot be deleted";
    case ProtocolRefusal::VirtualProtocol:
      return "Recorded is a virtual protocol used to test new commands before save.";
    case ProtocolRefusal::InvalidName:
      return "Protocol name must contain only: a-z,A-Z,0-9,'-','_'";
    case ProtocolRefusal::NameInUse:
      return "The new protocol name is in use";
    case ProtocolRefusal::NameLength:
      return "Protocol name must have 3-12 characters";
    case ProtocolRefusal::SendPls:
      return "SENDPLS must have an integer value greater than 0";
    case ProtocolRefusal::Repeat:
      return "REPEAT must have an integer value greater than 16 (or 0)";
    case ProtocolRefusal::GRepeat:
      return "GREPEAT must have an integer value greater than 16 (or 0 or 1)";
    case ProtocolRefusal::EmptyPattern:
      return "BITx must not be empty, if no BITG, then BITG=0";
    case ProtocolRefusal::CommaInDescription:
      return "Description cannot contain \",\" character!";
    case ProtocolRefusal::BracketInDescription:
      return "Description cannot contain \"[\" character!";
    case ProtocolRefusal::KeyInDescription:
      return "Description cannot contain \"GPROTO=\"!";
    case ProtocolRefusal::LineBreakInDescription:
      return "Description must be a single line";
    case ProtocolRefusal::BitG:
      return "BITG must have a binary value";
    case ProtocolRefusal::Bit0:
      return "BIT0 must have a binary value";
    case ProtocolRefusal::Bit1:
      return "BIT1 must have a binary value";
    case ProtocolRefusal::NoSection:
      return "The configuration has no whole section of this protocol.";
    case ProtocolRefusal::NoTemplate:
      return "The configuration has no section [Template] that a new protocol could stand ahead of.";
    case ProtocolRefusal::LineEnds:
      return "A line of the configuration does not end in CR LF. Give all its lines these ends, as unix2dos "
             "does, and try again.";
    case ProtocolRefusal::HeaderLine:
      return "The header line of the section is not plain. Leave only the name and its brackets in it, and "
             "try again.";
    case ProtocolRefusal::SectionBeforeGeneral:
      return "Another section of this name stands ahead of [General]. Take it out, and try again.";
    case ProtocolRefusal::DuplicateSection:
      return "A second section has this name, in " + line +
             " of the file, since upper and lower case count alike. Rename one of them, and try again.";
    case ProtocolRefusal::HeaderMissing:
      return "The section has its keys twice, the second time from " + line +
             " of the file on: the header above them is missing or damaged. Mend it, and try again.";
    case ProtocolRefusal::CommandAmongKeys:
      return "A command stands among the keys of the section, in " + line +
             " of the file. Move it below GREPEAT=, and try again.";
  }
  return {};
}

}  // namespace keplo
