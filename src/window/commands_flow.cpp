#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "config/commands.h"
#include "config/learn.h"
#include "config/protocols.h"
#include "config/values.h"
#include "window/form1.h"

namespace keplo {

void Form1::Protocol_Click() {
  mod_.Store.CurProtocol = Protocol.Text();
  if (Protocol.ListIndex() == ui::DropDownList::kNoSelection) return;
  mod_.Settings.ProtocolIndex = static_cast<std::int16_t>(Protocol.ListIndex());
  if (RecordedSelected()) {
    ShowRecorded();
    return;
  }
  ColourLists(ui::kCyan);
  if (KeepProtocolIndex() && LoadParams()) ReloadCommands();
}

void Form1::ColourLists(ui::Colour colour) {
  Protocol.SetBackColour(colour);
  SendCmd.SetBackColour(colour);
}

void Form1::ShowRecorded() {
  ColourLists(ui::kGreen);
  ReloadCommands();
  CodeStr.SetText({});
  SendPulse.SetText({});
  for (ui::Label* field :
       {&IRCommand, &BitNr, &GType, &Rpt, &GProt, &plen1, &plen0, &AddrVal, &CmdVal, &ToggleVal}) {
    field->SetText({});
  }
}

bool Form1::KeepProtocolIndex() {
  CfgStore& store = mod_.Store;
  store.CfgPos = FindNoCase("[General]", store.CfgText, 1);
  if (store.CfgPos != kNowhere) store.CfgPos = FindNoCase("PROTOCOL=", store.CfgText, store.CfgPos);
  if (store.CfgPos == kNowhere) return false;
  // A text that is full cannot take a longer number; the protocol can be used all the same.
  Told([&] { ReplaceValueAt(store, store.CfgPos, std::to_string(mod_.Settings.ProtocolIndex)); });
  return true;
}

bool Form1::LoadParams() {
  if (!LoadProtocolParams(mod_.Store.CfgText, mod_.Store.CurProtocol, mod_.ProtocolParams,
                          mod_.Signal.Measured.ProtoKind)) {
    return false;
  }
  SendPulse.SetText(std::to_string(mod_.ProtocolParams.SENDPLS));
  return true;
}

void Form1::ReloadCommands() {
  CfgStore& store = mod_.Store;
  store.CurProtocol = Protocol.Text();
  std::vector<std::string> names;
  if (RecordedSelected()) {
    names.emplace_back(kRecorded);
  } else {
    for (LearnedCommand& command : ListCommands(store.CfgText, store.CurProtocol)) {
      names.push_back(std::move(command.Name));
    }
  }
  SendCmd.SetEntries(std::move(names));
  SendCmd.Select(0);
}

void Form1::SendCmd_Click() {
  if (RecordedSelected()) return;
  const CfgStore& store = mod_.Store;
  if (const auto code = ShownCode(store.CfgText, store.CurProtocol, SendCmd.Text())) CodeStr.SetText(*code);
}

void Form1::SaveCmdButton_Click() {
  CfgStore& store = mod_.Store;
  std::string code = CodeStr.Text();
  LearnResult checked = CheckProtocol(store.CurProtocol);
  if (checked.Done() && !validation_.CmdValidated) checked.Refused = Refusal::NotValidated;
  if (checked.Done()) checked = CheckCode(store.CfgText, code);
  if (!checked.Done()) {
    Tell(RefusalText(checked));
    return;
  }
  const std::optional<std::string> name = AskName();
  const std::string before = store.CfgText;
  if (!name || !ChangeCommands([&] { StoreCommand(store, store.CurProtocol, code, *name); })) return;
  ShowSaved(*name);
  DropPlaceholder(store);
  Undo.Remember(before);
}

std::optional<std::string> Form1::AskName() {
  CfgStore& store = mod_.Store;
  while (true) {
    store.CurCommand =
        boxes_.Input("Enter the name for the new command.\nUse only a-z, A-Z,'-','_' characters",
                     "Input new command name", {});
    if (store.CurCommand.empty()) return std::nullopt;
    const LearnResult checked = CheckName(store.CfgText, store.CurProtocol, store.CurCommand);
    if (checked.Done()) return store.CurCommand;
    Tell(RefusalText(checked));
    if (checked.Refused == Refusal::NoSection) return std::nullopt;
  }
}

bool Form1::ChangeCommands(const std::function<void()>& change) {
  const std::string before = mod_.Store.CfgText;
  // A failure at the very end of a save leaves the new text in place, and the lists have to follow it.
  return Told(change) || mod_.Store.CfgText != before;
}

void Form1::ShowSaved(const std::string& name) {
  validation_.CmdValidated = false;
  CodeStr.SetBackColour(std::nullopt);
  IRCommand.SetText(mod_.Store.CurProtocol + "&" + name);
  Protocol.SelectText(mod_.Store.CurProtocol);
  ReloadCommands();
  SendCmd.SelectText(name);
}

void Form1::DeleteCmdButton_Click() {
  CfgStore& store = mod_.Store;
  LearnResult checked = CheckProtocol(store.CurProtocol);
  if (checked.Done()) {
    store.CurCommand = SendCmd.Text();
    checked = CheckDelete(store);
  }
  // A section written by hand may have no command line at all.
  if (checked.Done() && SendCmd.Count() == 0) checked.Refused = Refusal::NoMoreCommands;
  if (!checked.Done()) {
    Tell(RefusalText(checked));
    return;
  }
  if (!Ask("Do you want to delete the command " + store.CurCommand + " from the current protocol?")) return;
  const std::string before = store.CfgText;
  if (!ChangeCommands([&] { RemoveCommand(store); })) return;
  ReloadCommands();
  Undo.Remember(before);
}

}  // namespace keplo
