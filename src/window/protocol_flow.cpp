#include "window/protocol_flow.h"

#include <utility>

#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "window/file_watch.h"
#include "window/new_protocol.h"
#include "window/recorded_signal.h"

namespace keplo {

ProtocolFlow::ProtocolFlow(KeploMod& mod, const Controls& controls, CommandList& commands, UndoHistory& undo,
                           Dialogue& dialogue, const std::function<void()>& onDialog)
    : mod_(mod),
      controls_(controls),
      commands_(commands),
      undo_(undo),
      dialogue_(dialogue),
      onDialog_(onDialog) {}

ProtocolFlow::~ProtocolFlow() = default;

void ProtocolFlow::StartNew() { OpenDialog(kNewProtocolMode); }

void ProtocolFlow::StartEdit() {
  mod_.Store.CurProtocol = controls_.Protocol.Text();
  const ProtocolRefusal refusal = CheckProtocolEdit(mod_.Store.CurProtocol);
  if (refusal != ProtocolRefusal::None) {
    dialogue_.Tell(RefusalText(refusal));
    return;
  }
  OpenDialog(kEditProtocolMode);
}

void ProtocolFlow::OpenDialog(std::int16_t mode) {
  if (dialog_) return;
  mod_.ProtocolFormMode = mode;
  dialog_ = std::make_unique<NewProtocol>(*this, mod_, undo_, dialogue_,
                                          ShownSignal(controls_.Fields, mod_.Signal.Measured.ProtoKind));
  // A hidden window must not send, with parameters that the dialog may be changing.
  resumesLoop_ = controls_.SendLoop.Enabled();
  controls_.SendLoop.SetEnabled(false);
  if (onDialog_) onDialog_();
  dialog_->Form_Load();
}

void ProtocolFlow::Close() {
  if (!dialog_) return;
  closedDialog_ = std::move(dialog_);
  if (onDialog_) onDialog_();
  controls_.SendLoop.SetEnabled(resumesLoop_);
}

void ProtocolFlow::Delete() {
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
  ReloadIfChanged(store);
  const UndoStep step(undo_);
  ProtocolResult result;
  const bool changed = dialogue_.ChangeAndReport([&] { result = DeleteProtocol(store, store.CurProtocol); });
  if (!result.Done() && result.Refused != ProtocolRefusal::NoSection) dialogue_.Tell(RefusalText(result));
  if (!changed) return;
  SectionWalk walk = WalkSections(store.CfgText);
  const bool isWhole = walk.Ended == WalkEnd::ClosingHeader;
  if (isWhole) walk.Names.emplace_back(kRecorded);
  SetProtocols(std::move(walk.Names));
  if (isWhole) MakeProtocolCurrent(0);
}

}  // namespace keplo
