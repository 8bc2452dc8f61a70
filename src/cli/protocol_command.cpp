#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "cli/refuse.h"
#include "config/generic_protocols.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "failure.h"
#include "program/app_path.h"

namespace keplo::cli {

namespace {

/// What the command line tells of a protocol; what it does not tell stays empty.
struct ProtocolWords {
  std::string Name, AppPath;
  std::optional<std::string> Generic, Description, BitG, Bit0, Bit1;
  std::optional<std::int16_t> SendPls, Repeat, GRepeat;
  bool Yes = false;
};

template <typename Value, typename Word>
void Take(const std::optional<Word>& word, Value& value) {
  if (word) value = *word;
}

void TakePattern(const std::optional<std::string>& word, std::string& pattern) {
  if (word) pattern = Trimmed(*word);
}

void TakeWords(const ProtocolWords& words, ProtocolDraft& draft) {
  TakePattern(words.Description, draft.Description);
  Take(words.SendPls, draft.Params.SENDPLS);
  Take(words.Repeat, draft.Params.REPEAT);
  Take(words.GRepeat, draft.Params.GREPEAT);
  TakePattern(words.BitG, draft.Params.BITG);
  TakePattern(words.Bit0, draft.Params.BIT0);
  TakePattern(words.Bit1, draft.Params.BIT1);
}

std::int16_t IndexOf(std::string_view generic) {
  const auto* const entry =
      std::find_if(kGenericProtocols.begin(), kGenericProtocols.end(),
                   [&](const GenericProtocol& candidate) { return EqualNoCase(candidate.Name, generic); });
  return static_cast<std::int16_t>(entry - kGenericProtocols.begin());
}

ProtocolDraft PresetOf(std::string_view generic) {
  ProtocolDraft draft;
  draft.ProtoKind = IndexOf(generic);
  const GenericProtocol& preset = GenericProtocolAt(draft.ProtoKind);
  draft.Params.SENDPLS = preset.SENDPLS;
  draft.Params.REPEAT = preset.REPEAT;
  draft.Params.GREPEAT = preset.GREPEAT;
  draft.Params.BITG = preset.Patterns.BITG;
  draft.Params.BIT0 = preset.Patterns.BIT0;
  draft.Params.BIT1 = preset.Patterns.BIT1;
  return draft;
}

/// Tells what became of a change.
template <typename Change>
int Tell(const std::string& done, Change change) try {
  const ProtocolResult result = change();
  if (!result.Done()) return Refuse(RefusalText(result));
  std::cout << done << '\n';
  return kDone;
} catch (const Failure& failure) {
  return Refuse(failure.what());
}

/// The lines that a section is left with; a change drops comments, and may bring GREPEAT to REPEAT.
void PrintStored(std::string_view text, const std::string& protocol) {
  const std::optional<ProtocolDraft> stored = LoadProtocol(text, protocol);
  if (!stored) return;
  std::string lines = ParameterLines(*stored);
  lines.erase(std::remove(lines.begin(), lines.end(), '\r'), lines.end());
  std::cout << lines << '\n';
}

int Add(const ProtocolWords& words) {
  OpenConfig config(words.AppPath);
  config.RequireWhole();
  ProtocolDraft draft = PresetOf(*words.Generic);
  draft.Name = Trimmed(words.Name);
  TakeWords(words, draft);
  const int status = Tell(draft.Name + " added", [&] { return AddProtocol(config.Mod.Store, draft); });
  if (status == kDone) PrintStored(config.Mod.Store.CfgText, draft.Name);
  return status;
}

int Edit(const ProtocolWords& words) {
  OpenConfig config(words.AppPath);
  config.RequireWhole();
  const ProtocolRefusal refusal = CheckProtocolEdit(words.Name);
  if (refusal != ProtocolRefusal::None) return Refuse(RefusalText(refusal));
  std::optional<ProtocolDraft> draft = LoadProtocol(config.Mod.Store.CfgText, words.Name);
  if (!draft) return Refuse(words.Name + ": " + std::string(RefusalText(ProtocolRefusal::NoSection)));
  if (words.Generic) draft->ProtoKind = IndexOf(*words.Generic);
  TakeWords(words, *draft);
  const int status = Tell(words.Name + " changed", [&] { return EditProtocol(config.Mod.Store, *draft); });
  if (status == kDone) PrintStored(config.Mod.Store.CfgText, words.Name);
  return status;
}

bool Agreed(const std::string& question) {
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return EqualNoCase(answer, "y") || EqualNoCase(answer, "yes");
}

/// Why there is nothing to delete; empty if there is.
std::string WhyNotDeleted(const ProtocolWords& words) {
  const OpenConfig config(words.AppPath);
  config.RequireWhole();
  const ProtocolRefusal refusal = CheckProtocolDelete(words.Name);
  if (refusal != ProtocolRefusal::None) return std::string(RefusalText(refusal));
  const ProtocolResult refused = WithoutSection(config.Mod.Store.CfgText, words.Name).Refused;
  if (refused.Done()) return {};
  return words.Name + ": " + RefusalText(refused);
}

int DeleteAgreed(const ProtocolWords& words) {
  OpenConfig config(words.AppPath);
  config.RequireWhole();
  return Tell(words.Name + " deleted", [&] { return DeleteProtocol(config.Mod.Store, words.Name); });
}

int Delete(const ProtocolWords& words) {
  if (const std::string reason = WhyNotDeleted(words); !reason.empty()) return Refuse(reason);
  if (!words.Yes && isatty(STDIN_FILENO) == 0) {
    return Refuse("nothing is deleted without a question; there is no terminal to ask on, so give --yes");
  }
  if (!words.Yes &&
      !Agreed("Do you want to delete the protocol " + words.Name + " from the current configuration file?")) {
    return Refuse(words.Name + " was not deleted");
  }
  return AmongOthers([&] { return DeleteAgreed(words); });
}

Argument AddGenericOption(Command& command, ProtocolWords& words) {
  std::vector<std::string> names;
  names.reserve(kGenericProtocols.size());
  for (const GenericProtocol& generic : kGenericProtocols) names.emplace_back(generic.Name);
  return command.Choice("--gproto", words.Generic, names, "Generic protocol that it is built on",
                        Command::Case::Ignored);
}

void AddParameterOptions(Command& command, ProtocolWords& words) {
  command.Text("--description", words.Description, "A line of text, without a comma");
  command.Number("--sendpls", words.SendPls, "Length of a slot, microseconds");
  command.Number("--repeat", words.Repeat, "Silent slots ahead of a repeat; 0 for no repeat");
  command.Number("--grepeat", words.GRepeat, "Silent slots ahead of a repeated sync; or 0, or 1");
  command.Text("--bitg", words.BitG, "Slots of the sync, as 0 and 1");
  command.Text("--bit0", words.Bit0, "Slots of a digit 0");
  command.Text("--bit1", words.Bit1, "Slots of a digit 1");
}

using Work = int (*)(const ProtocolWords& words);

Command AddAction(Command& protocol, const char* name, const char* about, ProtocolWords& words) {
  Command action = protocol.Sub(name, about);
  action.Word("NAME", words.Name, "Section of keplo.cfg").Required();
  AddAppPathOption(action, words.AppPath);
  return action;
}

}  // namespace

void AddProtocolCommand(Command& root) {
  Command protocol = root.Sub("protocol", "Add, change or delete a protocol");
  const auto words = std::make_shared<ProtocolWords>();
  const auto does = [words](Work work) {
    return [words, work] { return AmongOthers([&] { return work(*words); }); };
  };

  Command add = AddAction(protocol, "add",
                          "Add a protocol; what is not told is as its generic protocol has it", *words);
  AddGenericOption(add, *words).Required();
  AddParameterOptions(add, *words);
  add.Runs(does(Add));

  Command edit = AddAction(protocol, "edit", "Change a protocol; what is not told stays", *words);
  Command changes = edit.AtLeastOneOf("Parameters");
  AddGenericOption(changes, *words);
  AddParameterOptions(changes, *words);
  edit.Runs(does(Edit));

  Command remove = AddAction(protocol, "delete", "Delete a protocol and its commands", *words);
  remove.Flag("--yes", words->Yes, "Do not ask");
  remove.Runs(does(Delete));
}

}  // namespace keplo::cli
