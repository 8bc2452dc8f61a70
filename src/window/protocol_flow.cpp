#include <memory>
#include <string>
#include <utility>

#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "window/form1.h"
#include "window/new_protocol.h"

namespace keplo {

void Form1::FileNewMenu_Click() { LoadProtocolDialog(kNewProtocolMode); }

void Form1::EditMenu_Click() {
  mod_.Store.CurProtocol = Protocol.Text();
  const ProtocolRefusal refusal = CheckProtocolEdit(mod_.Store.CurProtocol);
  if (refusal != ProtocolRefusal::None) {
    Tell(RefusalText(refusal));
    return;
  }
  LoadProtocolDialog(kEditProtocolMode);
}

void Form1::LoadProtocolDialog(std::int16_t mode) {
  if (newProtocol_) return;
  mod_.ProtocolFormMode = mode;
  newProtocol_ = std::make_unique<NewProtocol>(*this, mod_, boxes_);
  // Nothing is sent by a window that nobody sees, with parameters that the dialog is about to change.
  sendsAgain_ = Timer1.Enabled();
  Timer1.SetEnabled(false);
  if (OnProtocolDialog) OnProtocolDialog();
  newProtocol_->Form_Load();
}

void Form1::UnloadProtocolDialog() {
  if (!newProtocol_) return;
  unloadedDialog_ = std::move(newProtocol_);
  if (OnProtocolDialog) OnProtocolDialog();
  Timer1.SetEnabled(sendsAgain_);
}

void Form1::MakeProtocolCurrent(int index) {
  if (Protocol.ListIndex() == index) {
    Protocol_Click();
  } else {
    Protocol.Select(index);
  }
}

void Form1::TakeSelectedProtocol() {
  mod_.Store.CurProtocol = Protocol.Text();
  if (RecordedSelected()) return;
  // A red or green code has been recorded and is stored nowhere yet.
  const bool newCode = CodeStr.BackColour().has_value();
  const std::string code = CodeStr.Text(), pulse = SendPulse.Text();
  Protocol_Click();
  if (!newCode) return;
  CodeStr.SetText(code);
  SendPulse.SetText(pulse);
}

void Form1::ProtoDeleteMenu_Click() {
  CfgStore& store = mod_.Store;
  const ProtocolRefusal refusal = CheckProtocolDelete(store.CurProtocol);
  if (refusal != ProtocolRefusal::None) {
    Tell(RefusalText(refusal));
    return;
  }
  if (!Ask("Do you want to delete the protocol " + store.CurProtocol +
           " from the current configuration file?")) {
    return;
  }
  const SectionChange planned = WithoutSection(store.CfgText, store.CurProtocol);
  if (planned.Refused != ProtocolRefusal::None) {
    if (planned.Refused != ProtocolRefusal::NoSection) Tell(RefusalText(planned.Refused));
    return;
  }
  store.CfgPos = planned.Change.First;
  store.CfgPos2 = planned.Change.Last;
  std::string rest = planned.Change.In(store.CfgText);
  SectionWalk walk = WalkSections(rest);
  if (walk.Ended != WalkEnd::ClosingHeader) {
    store.ReplaceText(std::move(rest));
    Protocol.SetEntries(std::move(walk.Names));
    return;
  }
  // Section and selection in one save: a second one could fail and contradict the first.
  const std::string before = store.CfgText;
  if (!ChangeCommands([&] { ReplaceAndSave(store, WithCurrentProtocol(rest, 0)); })) return;
  Undo.Remember(before);
  walk.Names.emplace_back(kRecorded);
  Protocol.SetEntries(std::move(walk.Names));
  MakeProtocolCurrent(0);
}

}  // namespace keplo
