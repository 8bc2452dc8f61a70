#include "cli/reference.h"

#include "cli/outcome.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "program/arguments.h"
#include "typed_command.h"

namespace keplo::cli {

std::optional<CommandReference> SplitReference(std::string_view word) {
  const std::size_t mark = word.find('&');
  if (mark == std::string_view::npos || mark == 0 || mark + 1 == word.size()) return std::nullopt;
  return CommandReference{std::string(word.substr(0, mark)), std::string(word.substr(mark + 1))};
}

CommandReference ReferenceOf(const std::string& protocol, const std::string& command) {
  if (!command.empty()) return {protocol, command};
  if (auto both = SplitReference(protocol)) return *std::move(both);
  throw UsageError("COMMAND is required");
}

std::string ProtocolAsStored(std::string_view text, const std::string& word) {
  return StoredProtocol(text, word).value_or(word);
}

std::string RequireProtocol(std::string_view text, const std::string& word,
                            const std::string& appPathOption) {
  if (auto name = StoredProtocol(text, word)) return *std::move(name);
  throw Refused("no protocol \"" + word + "\" in keplo.cfg; " + TypedCommand("protocols", appPathOption) +
                " lists those that are there");
}

CommandReference AsStored(std::string_view text, const CommandReference& reference) {
  const auto command = FindLearned(text, reference.Protocol, reference.Command);
  return {ProtocolAsStored(text, reference.Protocol), command ? command->Name : reference.Command};
}

std::string WhyNotLearned(std::string_view text, const LearnResult& result, std::string_view code,
                          Analysis readBy) {
  if (result.Refused != Refusal::CodeExists) return ReasonedText(result);
  const auto known = keplo::FindCommand(text, code.substr(1), /*limit=*/0, readBy);
  return RefusalText(result) + (known ? " in the protocol " + known->Protocol : "");
}

}  // namespace keplo::cli
