#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "config/commands.h"
#include "config/learn.h"

namespace keplo::cli {

/// A command and its protocol.
struct CommandReference {
  std::string Protocol, Command;

  /// The reference as used in events: "NEC&POWER", without blanks around the names.
  std::string Text() const { return std::string(Trimmed(Protocol)).append("&").append(Trimmed(Command)); }
};

/// Parses a reference such as "NEC&POWER"; none without an & between two names.
std::optional<CommandReference> SplitReference(std::string_view word);

/// The reference in two words of a command line: protocol and command, or both in the first one.
/// @throws UsageError if the command is missing
CommandReference ReferenceOf(const std::string& protocol, const std::string& command);

// Words match in any letter case; the results are spelled as in keplo.cfg.

/// The protocol that a word matches; the word itself if there is none, which a change of the store will
/// refuse.
std::string ProtocolAsStored(std::string_view text, const std::string& word);
/// @throws Refused if there is no such protocol
std::string RequireProtocol(std::string_view text, const std::string& word, const std::string& appPathOption);
/// The reference with those names that exist spelled as in keplo.cfg.
CommandReference AsStored(std::string_view text, const CommandReference& reference);

/// The message about a code that was not stored; for a known code it includes the protocol.
/// @param readBy the analysis that read the code
std::string WhyNotLearned(std::string_view text, const LearnResult& result, std::string_view code,
                          Analysis readBy);

}  // namespace keplo::cli
