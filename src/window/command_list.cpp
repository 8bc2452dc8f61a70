#include "window/command_list.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "config/change_value.h"
#include "config/commands.h"
#include "config/parse_number.h"
#include "config/protocols.h"
#include "config/raw_lookup.h"
#include "config/read_settings.h"
#include "config/send_as_line.h"
#include "signal/send_as.h"
#include "window/file_watch.h"
#include "window/recorded_signal.h"

namespace keplo {

std::vector<std::string> CommandList::ProtocolNames() const {
  std::vector<std::string> names = keplo::ListProtocols(mod_.Store.CfgText);
  names.emplace_back(kRecorded);
  return names;
}

std::vector<std::string> CommandList::CommandNames() const {
  std::vector<std::string> names;
  for (LearnedCommand& command : ListCommands(mod_.Store.CfgText, mod_.Store.CurProtocol)) {
    names.push_back(std::move(command.Name));
  }
  return names;
}

void CommandList::ListProtocols() { controls_.Protocol.SetEntries(ProtocolNames()); }

void CommandList::ShowProtocol(const std::string& name) {
  ListProtocols();
  controls_.Protocol.SelectText(name);
}

void CommandList::Refill() {
  ui::DropDownList& protocols = controls_.Protocol;
  const bool wasSelected = protocols.ListIndex() != ui::DropDownList::kNoSelection;
  if (protocols.Refill(ProtocolNames())) {
    RefillCommands();
  } else if (wasSelected) {
    protocols.Select(0);
  }
}

void CommandList::RefillCommands() {
  mod_.Store.CurProtocol = controls_.Protocol.Text();
  if (RecordedSelected()) return;
  mod_.Settings.ProtocolIndex = static_cast<std::int16_t>(controls_.Protocol.ListIndex());
  ui::TextBox& codeStr = controls_.Fields.CodeStr;
  ui::TextBox& sendPulse = controls_.Fields.SendPulse;
  const std::string code = codeStr.Text(), pulse = sendPulse.Text();
  const bool ownCode = code != shownCode_;
  const bool ownPulse = Rounded<std::int32_t>(pulse) != mod_.ProtocolParams.SENDPLS;
  const std::int16_t kind = mod_.Signal.Measured.ProtoKind;
  if (StoreProtocolIndex() && LoadParams() && !controls_.SendCmd.Refill(CommandNames())) {
    controls_.SendCmd.Select(0);
  }
  if (controls_.SendCmd.Count() > 0) ApplyCommand();
  if (ownPulse) sendPulse.SetText(pulse);
  if (!ownCode) return;
  codeStr.SetText(code);
  mod_.Signal.Measured.ProtoKind = kind;
}

void CommandList::ApplyProtocol() {
  const ui::DropDownList& protocols = controls_.Protocol;
  mod_.Store.CurProtocol = protocols.Text();
  if (protocols.ListIndex() == ui::DropDownList::kNoSelection) return;
  mod_.Settings.ProtocolIndex = static_cast<std::int16_t>(protocols.ListIndex());
  if (RecordedSelected()) {
    ShowRecorded();
    return;
  }
  ColourLists(ui::kCyan);
  if (StoreProtocolIndex() && LoadParams()) ReloadCommands();
}

bool CommandList::RecordedSelected() const { return IsRecorded(mod_.Store.CurProtocol); }

void CommandList::ColourLists(ui::Colour colour) {
  controls_.Protocol.SetBackColour(colour);
  controls_.SendCmd.SetBackColour(colour);
}

void CommandList::ShowRecorded() {
  ColourLists(ui::kGreen);
  ReloadCommands();
  const ReadingFields& fields = controls_.Fields;
  fields.CodeStr.SetText({});
  fields.SendPulse.SetText({});
  for (ui::Label* field :
       {&fields.IRCommand, &fields.BitNr, &fields.GType, &fields.Rpt, &fields.GProt, &fields.plen1,
        &fields.plen0, &fields.AddrVal, &fields.CmdVal, &fields.ToggleVal}) {
    field->SetText({});
  }
}

bool CommandList::StoreProtocolIndex() {
  CfgStore& store = mod_.Store;
  store.CfgPos = FindNoCase("[General]", store.CfgText, 1);
  if (store.CfgPos != kNowhere) store.CfgPos = FindNoCase("PROTOCOL=", store.CfgText, store.CfgPos);
  if (store.CfgPos == kNowhere) return false;
  // A longer number may not fit a full text; the protocol can be used nevertheless.
  dialogue_.RunAndReport(
      [&] { ReplaceValueAt(store, store.CfgPos, std::to_string(mod_.Settings.ProtocolIndex)); });
  return true;
}

bool CommandList::LoadParams() {
  if (!LoadProtocolParams(mod_.Store.CfgText, mod_.Store.CurProtocol, mod_.ProtocolParams,
                          mod_.Signal.Measured.ProtoKind)) {
    return false;
  }
  LoadSendAs();
  controls_.Fields.SendPulse.SetText(std::to_string(mod_.ProtocolParams.SENDPLS));
  return true;
}

void CommandList::LoadSendAs() {
  const auto section = FindSection(mod_.Store.CfgText, mod_.Store.CurProtocol);
  const std::string value = section ? SendAsOf(mod_.Store.CfgText, *section) : std::string();
  mod_.ProtocolParams.SENDAS = mod_.Settings.Analysis == Analysis::First ? WithoutWays(value) : value;
}

void CommandList::ReloadCommands() {
  mod_.Store.CurProtocol = controls_.Protocol.Text();
  controls_.SendCmd.SetEntries(RecordedSelected() ? std::vector{std::string(kRecorded)} : CommandNames());
  controls_.SendCmd.Select(0);
}

void CommandList::ApplyCommand() {
  if (RecordedSelected()) return;
  const CfgStore& store = mod_.Store;
  if (const auto code = ShownCode(store.CfgText, store.CurProtocol, controls_.SendCmd.Text())) {
    shownCode_ = *code;
    controls_.Fields.CodeStr.SetText(*code);
  }
}

void CommandList::MakeProtocolCurrent(int index) {
  if (controls_.Protocol.ListIndex() == index) {
    ApplyProtocol();
  } else {
    controls_.Protocol.Select(index);
  }
}

void CommandList::ReapplyProtocol() {
  mod_.Store.CurProtocol = controls_.Protocol.Text();
  if (RecordedSelected()) return;
  ui::TextBox& codeStr = controls_.Fields.CodeStr;
  // A red or green code has been recorded, but not stored.
  const bool newCode = codeStr.BackColour().has_value();
  const std::string code = codeStr.Text(), pulse = controls_.Fields.SendPulse.Text();
  ApplyProtocol();
  if (!newCode) return;
  codeStr.SetText(code);
  controls_.Fields.SendPulse.SetText(pulse);
}

LearnResult CommandList::CheckNewCommand(std::string& code) const {
  LearnResult checked = CheckProtocol(mod_.Store.CurProtocol);
  if (checked.Done() && !validation_.CmdValidated) checked.Refused = Refusal::NotValidated;
  if (checked.Done()) checked = CheckCode(mod_.Store.CfgText, code, validation_.ReadBy);
  if (checked.Done()) checked = CheckRawCode(mod_.Store, code);
  if (checked.Done() && mod_.Store.CurProtocol.empty()) checked.Refused = Refusal::NoSection;
  return checked;
}

void CommandList::Save() {
  CfgStore& store = mod_.Store;
  std::string code = controls_.Fields.CodeStr.Text();
  LearnResult checked = CheckNewCommand(code);
  std::optional<std::string> name;
  if (checked.Done()) {
    name = AskName();
    if (!name) return;
    // Another program may have stored the code while the user was entering the name.
    checked = CheckNewCommand(code);
  }
  if (!checked.Done()) {
    dialogue_.Tell(RefusalText(checked), checked.Reason);
    return;
  }
  const UndoStep step(undo_);
  if (!dialogue_.ChangeAndReport(
          [&] { StoreCommand(store, store.CurProtocol, code, *name, mod_.Signal.SendAs); }))
    return;
  ShowSaved(*name);
  DropPlaceholder(store);
}

std::optional<std::string> CommandList::AskName() {
  CfgStore& store = mod_.Store;
  std::string typed;
  while (true) {
    typed = dialogue_.Input("Enter the name for the new command.\nUse only a-z, A-Z,'-','_' characters",
                            "Input new command name", typed);
    store.CurCommand = typed;
    if (typed.empty()) return std::nullopt;
    ReloadIfChanged(store);
    const LearnResult checked = CheckName(store.CfgText, store.CurProtocol, store.CurCommand);
    if (checked.Done()) return store.CurCommand;
    dialogue_.Tell(RefusalText(checked), checked.Reason);
    if (checked.Refused == Refusal::NoSection) return std::nullopt;
  }
}

void CommandList::ShowSaved(const std::string& name) {
  validation_.CmdValidated = false;
  controls_.Fields.CodeStr.SetBackColour(std::nullopt);
  controls_.Fields.IRCommand.SetText(mod_.Store.CurProtocol + "&" + name);
  controls_.Protocol.SelectText(mod_.Store.CurProtocol);
  // SelectText does nothing if the protocol was already selected.
  LoadSendAs();
  ReloadCommands();
  controls_.SendCmd.SelectText(name);
}

void CommandList::Delete() {
  CfgStore& store = mod_.Store;
  LearnResult checked = CheckProtocol(store.CurProtocol);
  if (checked.Done()) {
    store.CurCommand = controls_.SendCmd.Text();
    checked = CheckDelete(store);
  }
  // A hand-written section may have no command lines at all.
  if (checked.Done() && controls_.SendCmd.Count() == 0) checked.Refused = Refusal::NoMoreCommands;
  if (!checked.Done()) {
    dialogue_.Tell(RefusalText(checked), checked.Reason);
    return;
  }
  if (!dialogue_.Ask("Do you want to delete the command " + store.CurCommand +
                     " from the current protocol?")) {
    return;
  }
  ReloadIfChanged(store);
  const UndoStep step(undo_);
  bool isDone = false;  // true even if there was no such line
  const bool changed = dialogue_.ChangeAndReport([&] {
    RemoveCommand(store);
    isDone = true;
  });
  if (changed || isDone) ReloadCommands();
}

void CommandList::Undo() {
  const std::string protocol = controls_.Protocol.Text();
  const std::vector<std::string> commands = controls_.SendCmd.Entries();
  if (!undo_.Undo()) return;
  Settings before;  // the undone text selects the protocol that was selected before the change
  const bool isKnown = ReadSettings(mod_.Store, before).Complete();
  Refill();
  if (RecordedSelected()) return;
  if (isKnown) controls_.Protocol.Select(before.ProtocolIndex);
  if (controls_.Protocol.Text() != protocol) return;
  // Selects the restored command, if any.
  for (const std::string& command : controls_.SendCmd.Entries()) {
    if (std::find(commands.begin(), commands.end(), command) == commands.end()) {
      controls_.SendCmd.SelectText(command);
      return;
    }
  }
}

}  // namespace keplo
