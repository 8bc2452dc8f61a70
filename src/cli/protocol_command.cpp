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
#include "cli/open_install.h"
#include "cli/reference.h"
#include "config/generic_protocols.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "failure.h"
#include "program/app_path.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

/// The parameters of a protocol on the command line; empty if not given.
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

void ApplyWords(const ProtocolWords& words, ProtocolDraft& draft) {
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

void Require(const ProtocolResult& result, const std::string& before = {}) {
  if (!result.Done()) throw Refused(before + RefusalText(result));
}

/// Prints what was done, and the resulting lines of the section, since a change drops comments and may adjust
/// GREPEAT.
void PrintStored(std::string_view text, const std::string& protocol, const char* done) {
  std::cout << Printable(protocol) << ' ' << done << '\n';
  const std::optional<ProtocolDraft> stored = LoadProtocol(text, protocol);
  if (!stored) return;
  for (const std::string& line : PrintableLines(ParameterLines(*stored))) std::cout << line << '\n';
}

int Add(const ProtocolWords& words) {
  OpenedConfig config(words.AppPath);
  ProtocolDraft draft = PresetOf(*words.Generic);
  draft.Name = Trimmed(words.Name);
  ApplyWords(words, draft);
  config.Change([&](CfgStore& store) { Require(AddProtocol(store, draft)); });
  PrintStored(config.Text(), draft.Name, "added");
  return kDone;
}

int Edit(const ProtocolWords& words) {
  Require(CheckProtocolEdit(words.Name));
  OpenedConfig config(words.AppPath);
  std::string name;
  config.Change([&](CfgStore& store) {
    name = ProtocolAsStored(store.CfgText, words.Name);
    std::optional<ProtocolDraft> draft = LoadProtocol(store.CfgText, name);
    if (!draft) Require(ProtocolRefusal::NoSection, name + ": ");
    if (words.Generic) draft->ProtoKind = IndexOf(*words.Generic);
    ApplyWords(words, *draft);
    Require(CheckProtocolDraft(*draft));
    Require(EditProtocol(store, *draft), name + ": ");
  });
  PrintStored(config.Text(), name, "changed");
  return kDone;
}

bool Confirmed(const std::string& question) {
  std::cerr << Printable(question) << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return EqualNoCase(answer, "y") || EqualNoCase(answer, "yes");
}

/// The stored name of a protocol.
/// @throws Refused if it cannot be deleted
std::string RequireDeletable(std::string_view text, const std::string& word) {
  Require(CheckProtocolDelete(word));
  std::string name = ProtocolAsStored(text, word);
  Require(WithoutSection(text, name).Refused, name + ": ");
  return name;
}

int Delete(const ProtocolWords& words) {
  OpenedConfig config(words.AppPath);
  config.RequireWhole();
  std::string name = RequireDeletable(config.Text(), words.Name);
  if (!words.Yes && isatty(STDIN_FILENO) == 0) {
    throw Refused("nothing is deleted without a question; there is no terminal to ask on, so give --yes");
  }
  if (!words.Yes &&
      !Confirmed("Do you want to delete the protocol " + name + " from the current configuration file?")) {
    throw Refused(name + " was not deleted");
  }
  config.Change([&](CfgStore& store) {
    name = RequireDeletable(store.CfgText, words.Name);
    Require(DeleteProtocol(store, name));
  });
  std::cout << Printable(name) << " deleted\n";
  return kDone;
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
  command.Number("--repeat", words.Repeat, "Silent slots before a repeat; 0 for no repeat");
  command.Number("--grepeat", words.GRepeat, "Silent slots before a repeated sync; or 0, or 1");
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
  const auto does = [words](Work work) { return [words, work] { return work(*words); }; };

  Command add = AddAction(protocol, "add",
                          "Add a protocol; what is not told is as its generic protocol has it", *words);
  AddGenericOption(add, *words).Required();
  AddParameterOptions(add, *words);
  add.Examples({"keplo protocol add Lamp --gproto SONY --description 'By the window'"});
  add.Runs(does(Add));

  Command edit = AddAction(protocol, "edit", "Change a protocol; what is not told stays", *words);
  Command changes = edit.AtLeastOneOf("Parameters");
  AddGenericOption(changes, *words);
  AddParameterOptions(changes, *words);
  edit.Examples({"keplo protocol edit Lamp --repeat 30"});
  edit.Runs(does(Edit));

  Command remove = AddAction(protocol, "delete", "Delete a protocol and its commands", *words);
  remove.Flag("--yes", words->Yes, "Do not ask");
  remove.Examples({"keplo protocol delete Lamp --yes"});
  remove.Runs(does(Delete));
  protocol.Examples({"keplo protocol add Lamp --gproto SONY", "keplo protocol edit Lamp --repeat 30"});
}

}  // namespace keplo::cli
