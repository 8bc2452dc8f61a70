#include "window/command_list.h"

#include <utility>
#include <vector>

#include "config/commands.h"
#include "config/learn.h"
#include "config/protocols.h"
#include "config/values.h"
#include "window/recorded_signal.h"

namespace keplo {

void CommandList::ListProtocols() {
  std::vector<std::string> names = keplo::ListProtocols(mod_.Store.CfgText);
  names.emplace_back(kRecorded);
  controls_.Protocol.SetEntries(std::move(names));
}

void CommandList::TakeProtocol() {
  const ui::DropDownList& protocols = controls_.Protocol;
  mod_.Store.CurProtocol = protocols.Text();
  if (protocols.ListIndex() == ui::DropDownList::kNoSelection) return;
  mod_.Settings.ProtocolIndex = static_cast<std::int16_t>(protocols.ListIndex());
  if (RecordedSelected()) {
    ShowRecorded();
    return;
  }
  ColourLists(ui::kCyan);
  if (KeepProtocolIndex() && LoadParams()) ReloadCommands();
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

bool CommandList::KeepProtocolIndex() {
  CfgStore& store = mod_.Store;
  store.CfgPos = FindNoCase("[General]", store.CfgText, 1);
  if (store.CfgPos != kNowhere) store.CfgPos = FindNoCase("PROTOCOL=", store.CfgText, store.CfgPos);
  if (store.CfgPos == kNowhere) return false;
  // A text that is full cannot take a longer number; the protocol can be used all the same.
  dialogue_.Told([&] { ReplaceValueAt(store, store.CfgPos, std::to_string(mod_.Settings.ProtocolIndex)); });
  return true;
}

bool CommandList::LoadParams() {
  if (!LoadProtocolParams(mod_.Store.CfgText, mod_.Store.CurProtocol, mod_.ProtocolParams,
                          mod_.Signal.Measured.ProtoKind)) {
    return false;
  }
  controls_.Fields.SendPulse.SetText(std::to_string(mod_.ProtocolParams.SENDPLS));
  return true;
}

void CommandList::ReloadCommands() {
  CfgStore& store = mod_.Store;
  store.CurProtocol = controls_.Protocol.Text();
  std::vector<std::string> names;
  if (RecordedSelected()) {
    names.emplace_back(kRecorded);
  } else {
    for (LearnedCommand& command : ListCommands(store.CfgText, store.CurProtocol)) {
      names.push_back(std::move(command.Name));
    }
  }
  controls_.SendCmd.SetEntries(std::move(names));
  controls_.SendCmd.Select(0);
}

void CommandList::TakeCommand() {
  if (RecordedSelected()) return;
  const CfgStore& store = mod_.Store;
  if (const auto code = ShownCode(store.CfgText, store.CurProtocol, controls_.SendCmd.Text())) {
    controls_.Fields.CodeStr.SetText(*code);
  }
}

void CommandList::MakeProtocolCurrent(int index) {
  if (controls_.Protocol.ListIndex() == index) {
    TakeProtocol();
  } else {
    controls_.Protocol.Select(index);
  }
}

void CommandList::TakeProtocolAgain() {
  mod_.Store.CurProtocol = controls_.Protocol.Text();
  if (RecordedSelected()) return;
  ui::TextBox& codeStr = controls_.Fields.CodeStr;
  // A red or green code has been recorded and is stored nowhere yet.
  const bool newCode = codeStr.BackColour().has_value();
  const std::string code = codeStr.Text(), pulse = controls_.Fields.SendPulse.Text();
  TakeProtocol();
  if (!newCode) return;
  codeStr.SetText(code);
  controls_.Fields.SendPulse.SetText(pulse);
}

void CommandList::Save() {
  CfgStore& store = mod_.Store;
  std::string code = controls_.Fields.CodeStr.Text();
  LearnResult checked = CheckProtocol(store.CurProtocol);
  if (checked.Done() && !validation_.CmdValidated) checked.Refused = Refusal::NotValidated;
  if (checked.Done()) checked = CheckCode(store.CfgText, code, validation_.ReadBy);
  if (!checked.Done()) {
    dialogue_.Tell(RefusalText(checked));
    return;
  }
  const std::optional<std::string> name = AskName();
  if (!name) return;
  if (!dialogue_.Changed([&] { StoreCommand(store, store.CurProtocol, code, *name); })) return;
  ShowSaved(*name);
  DropPlaceholder(store);
}

std::optional<std::string> CommandList::AskName() {
  CfgStore& store = mod_.Store;
  while (true) {
    store.CurCommand =
        dialogue_.Boxes.Input("Enter the name for the new command.\nUse only a-z, A-Z,'-','_' characters",
                              "Input new command name", {});
    if (store.CurCommand.empty()) return std::nullopt;
    const LearnResult checked = CheckName(store.CfgText, store.CurProtocol, store.CurCommand);
    if (checked.Done()) return store.CurCommand;
    dialogue_.Tell(RefusalText(checked));
    if (checked.Refused == Refusal::NoSection) return std::nullopt;
  }
}

void CommandList::ShowSaved(const std::string& name) {
  validation_.CmdValidated = false;
  controls_.Fields.CodeStr.SetBackColour(std::nullopt);
  controls_.Fields.IRCommand.SetText(mod_.Store.CurProtocol + "&" + name);
  controls_.Protocol.SelectText(mod_.Store.CurProtocol);
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
  // A section written by hand may have no command line at all.
  if (checked.Done() && controls_.SendCmd.Count() == 0) checked.Refused = Refusal::NoMoreCommands;
  if (!checked.Done()) {
    dialogue_.Tell(RefusalText(checked));
    return;
  }
  if (!dialogue_.Ask("Do you want to delete the command " + store.CurCommand +
                     " from the current protocol?")) {
    return;
  }
  if (dialogue_.Changed([&] { RemoveCommand(store); })) ReloadCommands();
}

}  // namespace keplo
