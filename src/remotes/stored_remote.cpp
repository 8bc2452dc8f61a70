#include "remotes/stored_remote.h"

#include "config/cfg_text.h"
#include "config/commands.h"
#include "config/learn.h"
#include "config/protocol_edit.h"
#include "failure.h"
#include "remotes/section_signal.h"

namespace keplo {

namespace {

RemoteKey KeyOfCommand(const SectionSignal& section, const LearnedCommand& command) try {
  const std::string digits = command.Code.substr(command.Code.empty() ? 0 : 1);
  if (digits.empty() || digits.find_first_not_of("01") != std::string::npos) {
    throw Failure(0, "its code has other characters than 0 and 1");
  }
  RemoteKey key = KeyOfCode(section, digits);
  if (!key.Coded && key.Lengths.empty())
    key.Skipped = "nothing can be heard of what the section sends for it";
  return key;
} catch (const Failure& notSent) {
  RemoteKey key;
  key.Skipped = notSent.what();
  return key;
}

}  // namespace

Remote RemoteOfSection(std::string_view text, const std::string& protocol,
                       const std::function<bool(std::string_view name)>& wants) {
  const std::optional<ProtocolDraft> draft = LoadProtocol(text, protocol);
  if (!draft) throw Failure(0, RefusalText({Refusal::NoSection, protocol}));
  const SectionSignal section{draft->ProtoKind, draft->Params};
  Remote remote{protocol, {}};
  for (const LearnedCommand& command : ListCommands(text, protocol)) {
    if (command.Code + "," + command.Name == kPlaceholderLine) continue;
    const std::string name(Trimmed(command.Name));
    if (wants && !wants(name)) continue;
    remote.Keys.push_back(KeyOfCommand(section, command));
    remote.Keys.back().Name = name;
  }
  return remote;
}

}  // namespace keplo
