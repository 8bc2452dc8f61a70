#include "remotes/stored_remote.h"

#include "config/cfg_text.h"
#include "config/commands.h"
#include "config/learn.h"
#include "config/protocol_edit.h"
#include "failure.h"
#include "remotes/section_signal.h"
#include "signal/raw/raw_digits.h"

namespace keplo {

namespace {

/// The first form of a raw command, whose second one is sent every second time.
RemoteKey KeyOfLengths(const SectionSignal& section, const RawStore* raw, const std::string& digits) {
  const auto known = raw == nullptr ? nullptr : &raw->Known;
  if (known == nullptr || known->count(digits) == 0) throw Failure(0, "its lengths are missing");
  const std::vector<RawLengths>& forms = known->at(digits).Forms;
  RemoteKey key;
  key.Carrier = section.Params.Carrier;
  key.Lengths = forms.front();
  if (forms.size() > 1) key.Toggled = forms[1];
  return key;
}

RemoteKey KeyOfCommand(const SectionSignal& section, const LearnedCommand& command, const RawStore* raw) try {
  const std::string digits = command.Code.substr(command.Code.empty() ? 0 : 1);
  if (digits.empty() || digits.find_first_not_of("01") != std::string::npos) {
    throw Failure(0, "its code has other characters than 0 and 1");
  }
  if (AreRawDigits(digits)) return KeyOfLengths(section, raw, digits);
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
                       const std::function<bool(std::string_view name)>& wants, const RawStore* raw) {
  const std::optional<ProtocolDraft> draft = LoadProtocol(text, protocol);
  if (!draft) throw Failure(0, RefusalText({Refusal::NoSection, protocol}));
  const SectionSignal section{draft->ProtoKind, draft->Params};
  Remote remote{protocol, {}};
  for (const LearnedCommand& command : ListCommands(text, protocol)) {
    if (command.Code + "," + command.Name == kPlaceholderLine) continue;
    const std::string name(Trimmed(command.Name));
    if (wants && !wants(name)) continue;
    remote.Keys.push_back(KeyOfCommand(section, command, raw));
    remote.Keys.back().Name = name;
  }
  return remote;
}

}  // namespace keplo
