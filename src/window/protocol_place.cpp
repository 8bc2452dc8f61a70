#include "window/protocol_place.h"

#include <utility>

#include "config/check_config.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "window/file_watch.h"
#include "window/new_protocol.h"
#include "window/recorded_signal.h"

namespace keplo {

ProtocolPlace::ProtocolPlace(KeploMod& mod, const Controls& controls, CommandList& commands, UndoPlace& undo,
                             Dialogue& dialogue, const std::function<void()>& onDialog)
    : mod_(mod),
      controls_(controls),
      commands_(commands),
      undo_(undo),
      dialogue_(dialogue),
      onDialog_(onDialog) {}

ProtocolPlace::~ProtocolPlace() = default;

void ProtocolPlace::StartNew() { Load(kNewProtocolMode); }

void ProtocolPlace::StartEdit() {
  mod_.Store.CurProtocol = controls_.Protocol.Text();
  const ProtocolRefusal refusal = CheckProtocolEdit(mod_.Store.CurProtocol);
  if (refusal != ProtocolRefusal::None) {
    dialogue_.Tell(RefusalText(refusal));
    return;
  }
  Load(kEditProtocolMode);
}

void ProtocolPlace::Load(std::int16_t mode) {
  if (dialog_) return;
  mod_.ProtocolFormMode = mode;
  dialog_ = std::make_unique<NewProtocol>(*this, mod_, undo_, dialogue_,
                                          ShownSignal(controls_.Fields, mod_.Signal.Measured.ProtoKind));
  // Nothing is sent by a window that nobody sees, with parameters that the dialog is about to change.
  sendsAgain_ = controls_.SendLoop.Enabled();
  controls_.SendLoop.SetEnabled(false);
  if (onDialog_) onDialog_();
  dialog_->Form_Load();
}

void ProtocolPlace::Unload() {
  if (!dialog_) return;
  unloadedDialog_ = std::move(dialog_);
  if (onDialog_) onDialog_();
  controls_.SendLoop.SetEnabled(sendsAgain_);
}

void ProtocolPlace::Delete() {
  CfgStore& store = mod_.Store;
  const ProtocolRefusal refusal = CheckProtocolDelete(store.CurProtocol);
  if (refusal != ProtocolRefusal::None) {
    dialogue_.Tell(RefusalText(refusal));
    return;
  }
  if (!dialogue_.Ask("Do you want to delete the protocol " + store.CurProtocol +
                     " from the current configuration file?")) {
    return;
  }
  TakeInOtherText(store);
  const UndoStep step(undo_);
  const SectionChange planned = WithoutSection(store.CfgText, store.CurProtocol);
  if (planned.Refused != ProtocolRefusal::None) {
    if (planned.Refused != ProtocolRefusal::NoSection) dialogue_.Tell(RefusalText(planned.Refused));
    return;
  }
  store.CfgPos = planned.Change.First;
  store.CfgPos2 = planned.Change.Last;
  std::string rest = planned.Change.In(store.CfgText);
  if (!HasWholeSections(rest) && HasWholeSections(store.CfgText)) {
    return dialogue_.Tell(RefusalText(ProtocolResult(ProtocolRefusal::HeaderLine)));
  }
  SectionWalk walk = WalkSections(rest);
  if (walk.Ended != WalkEnd::ClosingHeader) {
    store.ReplaceText(std::move(rest));
    SetProtocols(std::move(walk.Names));
    return;
  }
  // Section and selection in one save: a second one could fail and contradict the first.
  if (!dialogue_.Changed([&] { ReplaceAndSave(store, WithCurrentProtocol(rest, 0)); })) return;
  walk.Names.emplace_back(kRecorded);
  SetProtocols(std::move(walk.Names));
  MakeProtocolCurrent(0);
}

}  // namespace keplo
