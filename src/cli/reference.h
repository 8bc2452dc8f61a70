#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/commands.h"
#include "config/learn.h"

namespace keplo::cli {

/// What an event is bound to: a protocol and one of its commands.
struct CommandReference {
  std::string Protocol, Command;

  /// As a press raises it and the event map has it, without blanks around the names: "NEC&POWER".
  std::string Text() const { return std::string(Trimmed(Protocol)).append("&").append(Trimmed(Command)); }
};

/// The reference in a word such as "NEC&POWER"; none without an & between two names.
std::optional<CommandReference> SplitReference(std::string_view word);

/// What two words of a command line name: protocol and command, or both in the first one.
/// @throws WrongUse if the command is missing
CommandReference ReferenceOf(const std::string& protocol, const std::string& command);

// All that is told and stored has the spelling of keplo.cfg.

/// The protocol that a word means; the word itself if there is none, which a change of the store then
/// refuses.
std::string ProtocolAsStored(std::string_view text, const std::string& word);
/// @throws Refused if there is no such protocol
std::string RequireProtocol(std::string_view text, const std::string& word, const std::string& appPathOption);
/// The reference as keplo.cfg spells it, as far as it has those names.
CommandReference AsStored(std::string_view text, const CommandReference& reference);

/// The sentence of the store on a code that was not stored; of a known one it names the protocol as well.
/// @param readBy with which the store looked for it
std::string WhyNotLearned(std::string_view text, const LearnResult& result, std::string_view code,
                          Analysis readBy);

}  // namespace keplo::cli
