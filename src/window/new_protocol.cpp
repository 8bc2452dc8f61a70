#include "window/new_protocol.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "config/generic_protocols.h"
#include "config/parse_number.h"
#include "config/protocols.h"
#include "config/sections.h"
#include "window/file_watch.h"
#include "window/protocol_flow.h"

namespace keplo {

namespace {

/// What the dialog proposes for a recorded line code.
struct RecordedKind {
  std::int16_t ProtoKind;
  int Generic;              // index in kGenericProtocols
  std::string_view Repeat;  // empty for that of the generic protocol
};
constexpr std::array<RecordedKind, 5> kRecordedKinds = {
    {{kNec, 0, "50"}, {kSony, 1, "50"}, {kRc5, 2, "90"}, {kRc6, 3, "190"}, {kUnknown, 3, {}}}};

constexpr std::string_view kNameTip = "Enter the new protocol name. Use only letters and numbers.";

}  // namespace

std::span<const NewProtocolRow> NewProtocolControls() {
  using D = NewProtocol;
  static constexpr std::array kRows = std::to_array<NewProtocolRow>({
      {"CProtIn", &D::CProtIn, "NAME", 'N', kNameTip},
      {"ProtDesc", &D::ProtDesc, "DESCRIPT.", 'D', kNameTip},
      {"GProtoIn", &D::GProtoIn, "GPROTO", 'G', "Select generic protocol"},
      {"SendPlsIn", &D::SendPlsIn, "SENDPLS", 'L', "The T legth for the sended pulse, in us (usualy 550)."},
      {"RepeatIn", &D::RepeatIn, "REPEAT", 'R', "How many times the sequence is repeated."},
      {"GRepeatIn", &D::GRepeatIn, "GREPEAT", 'A', "Sync signal repeat (0, 1 or >3)"},
      {"BitGIn", &D::BitGIn, "BITG", 'B', "The sync bit representation."},
      {"Bit0In", &D::Bit0In, "BIT0", '0', "The '0' bit representation."},
      {"Bit1In", &D::Bit1In, "BIT1", '1', "The '1' bit representation."},
      {"CreateButton", &D::CreateButton, "Save", 'S',
       "Click here to save the new protocol in the configuration file."},
      {"CancelButton", &D::CancelButton, "Cancel", 'C',
       "Click here to cancel the new protocol creation procedure and to return to the main application "
       "window."},
  });
  return kRows;
}

NewProtocol::NewProtocol(ProtocolFlow& flow, KeploMod& mod, UndoHistory& undo, Dialogue& dialogue,
                         RecordedSignal recorded)
    : flow_(flow), mod_(mod), undo_(undo), dialogue_(dialogue), recorded_(std::move(recorded)) {
  SetTitle("Protocol Parameters");
  GProtoIn.OnClick = [this] { GProtoIn_Click(); };
  CreateButton.OnClick = [this] { CreateButton_Click(); };
  CancelButton.OnClick = [this] { CancelButton_Click(); };
}

bool NewProtocol::IsNew() const { return mod_.ProtocolFormMode == kNewProtocolMode; }

void NewProtocol::Form_Load() {
  for (const GenericProtocol& generic : kGenericProtocols) GProtoIn.Add(generic.Name);
  if (IsRecorded(mod_.Store.CurProtocol) && recorded_.HasCode()) {
    FillFromRecording();
  } else if (!FillFromSection()) {
    Refuse();
  }
}

void NewProtocol::FillFromRecording() {
  ProtocolParams& params = mod_.ProtocolParams;
  SetParams(recorded_, params);
  for (const RecordedKind& recorded : kRecordedKinds) {
    if (recorded.ProtoKind != recorded_.ProtoKind) continue;
    GProtoIn.Select(recorded.Generic);
    if (!recorded.Repeat.empty()) RepeatIn.SetText(recorded.Repeat);
  }
  SendPlsIn.SetText(recorded_.Pulse);
  BitGIn.SetText(params.BITG);
  Bit0In.SetText(params.BIT0);
  Bit1In.SetText(params.BIT1);
}

bool NewProtocol::FillFromSection() {
  CfgStore& store = mod_.Store;
  if (IsNew()) store.CurProtocol = "Template";
  SavedProtocolIndex = static_cast<std::int16_t>(flow_.SelectedProtocol());
  const std::optional<ProtocolDraft> stored = LoadProtocol(store.CfgText, store.CurProtocol);
  if (!stored) return false;
  StoreParams(*stored);
  GProtoIn.Select(stored->ProtoKind);
  const ProtocolParams& params = stored->Params;
  SendPlsIn.SetText(KeyNumber(params.SENDPLS));
  RepeatIn.SetText(KeyNumber(params.REPEAT));
  BitGIn.SetText(params.BITG);
  Bit0In.SetText(params.BIT0);
  Bit1In.SetText(params.BIT1);
  GRepeatIn.SetText(std::to_string(params.GREPEAT));
  CProtIn.SetText(IsNew() ? "NewProtocol" : store.CurProtocol);
  ProtDesc.SetText(IsNew() ? std::string() : stored->Description);
  CProtIn.SetEnabled(IsNew());
  return true;
}

void NewProtocol::Refuse() {
  dialogue_.Tell("Error in the configuration file\r\nThe Protocol Form can not be opened");
  CancelButton_Click();
}

void NewProtocol::GProtoIn_Click() {
  const GenericProtocol& generic = GenericProtocolAt(GProtoIn.ListIndex());
  SendPlsIn.SetText(std::to_string(generic.SENDPLS));
  RepeatIn.SetText(std::to_string(generic.REPEAT));
  GRepeatIn.SetText(std::to_string(generic.GREPEAT));
  Bit0In.SetText(generic.Patterns.BIT0);
  Bit1In.SetText(generic.Patterns.BIT1);
  BitGIn.SetText(generic.Patterns.BITG);
}

void NewProtocol::CreateButton_Click() {
  CfgStore& store = mod_.Store;
  TrimFields();
  ProtocolDraft draft = Fields();
  ProtocolRefusal refusal = IsNew() ? CheckProtocolName(store.CfgText, draft.Name) : ProtocolRefusal::None;
  if (refusal == ProtocolRefusal::None) {
    refusal = CheckProtocolDraft(draft);
    StoreParams(draft);
  }
  SectionChange planned(refusal);
  if (refusal == ProtocolRefusal::None) {
    store.CurProtocol = draft.Name;
    planned = Plan(draft);
    if (planned.Refused == ProtocolRefusal::None && !Confirmed(planned.Change.Block)) return;
    // Another program may have moved the section or used the name meanwhile.
    if (planned.Refused == ProtocolRefusal::None && ReloadIfChanged(store).empty()) planned = Plan(draft);
  }
  if (planned.Refused != ProtocolRefusal::None) {
    dialogue_.Tell(RefusalText(planned.Refused));
    return;
  }
  const UndoStep step(undo_);
  if (!Save(draft, planned.Change)) return;
  if (IsNew() && !RelistProtocols()) return;
  flow_.MakeProtocolCurrent(SavedProtocolIndex);
  flow_.Close();
  flow_.ShowPulse(KeyNumber(mod_.ProtocolParams.SENDPLS));
}

SectionChange NewProtocol::Plan(const ProtocolDraft& draft) {
  CfgStore& store = mod_.Store;
  const ProtocolRefusal refusal =
      IsNew() ? CheckProtocolName(store.CfgText, draft.Name) : ProtocolRefusal::None;
  if (refusal != ProtocolRefusal::None) return SectionChange(refusal);
  SectionChange planned = IsNew() ? NewSection(store.CfgText, draft) : EditedSection(store.CfgText, draft);
  if (planned.Refused == ProtocolRefusal::None) {
    store.CfgPos = planned.Change.First;
    store.CfgPos2 = planned.Change.Last;
    store.NewCmdLine = planned.Change.Block;
  }
  return planned;
}

void NewProtocol::TrimFields() {
  for (ui::TextBox* field : {&CProtIn, &SendPlsIn, &RepeatIn, &GRepeatIn, &ProtDesc}) {
    field->SetText(std::string(Trimmed(field->Text())));
  }
}

ProtocolDraft NewProtocol::Fields() const {
  ProtocolDraft draft;
  draft.Name = CProtIn.Text();
  draft.Description = ProtDesc.Text();
  // Without a selection the first entry is used; any other number would make the section unreadable.
  draft.ProtoKind = static_cast<std::int16_t>(std::max(GProtoIn.ListIndex(), 0));
  draft.Params.SENDPLS = Rounded<std::int16_t>(SendPlsIn.Text());
  draft.Params.REPEAT = Rounded<std::int16_t>(RepeatIn.Text());
  draft.Params.GREPEAT = Rounded<std::int16_t>(GRepeatIn.Text());
  draft.Params.BITG = Trimmed(BitGIn.Text());
  draft.Params.BIT0 = Trimmed(Bit0In.Text());
  draft.Params.BIT1 = Trimmed(Bit1In.Text());
  return draft;
}

void NewProtocol::StoreParams(const ProtocolDraft& draft) {
  mod_.Signal.Measured.ProtoKind = draft.ProtoKind;
  std::string tail = std::move(mod_.ProtocolParams.BitTail);
  mod_.ProtocolParams = draft.Params;
  mod_.ProtocolParams.BitTail = std::move(tail);
}

bool NewProtocol::Confirmed(const std::string& block) {
  const std::string question =
      IsNew() ? "A new protocol with the following parameters will be created:\r\n" + block + "\r\n"
              : "The new parameters of the selected protocol are:\r\n" + block + "\r\n\r\n";
  return dialogue_.Ask(question + "Do you want to save it?") && IsOpen();
}

bool NewProtocol::IsOpen() const { return flow_.Dialog() == this; }

bool NewProtocol::Save(const ProtocolDraft& draft, const Splice& change) {
  CfgStore& store = mod_.Store;
  const std::string before = store.CfgText;
  const std::string text = IsNew() ? change.In(before) : WithEdit(before, draft, change);
  if (IsNew()) SavedProtocolIndex = static_cast<std::int16_t>(ProtocolIndexOf(text, draft.Name));
  // One save for section and selection, since a second one could fail.
  const bool done =
      dialogue_.RunAndReport([&] { ReplaceAndSave(store, WithCurrentProtocol(text, SavedProtocolIndex)); });
  // The save may have merged changes of another program that move the section.
  if (IsNew()) SavedProtocolIndex = static_cast<std::int16_t>(ProtocolIndexOf(store.CfgText, draft.Name));
  // A failure at the very end of a save leaves the new text in place.
  return (done || store.CfgText != before) && IsOpen();
}

bool NewProtocol::RelistProtocols() {
  SectionWalk walk = WalkSections(mod_.Store.CfgText);
  if (walk.Ended == WalkEnd::NoGeneral) {
    flow_.SetProtocols({});
    dialogue_.Tell("Error in the configuration file");
    return false;
  }
  walk.Names.emplace_back(kRecorded);
  flow_.SetProtocols(std::move(walk.Names));
  return true;
}

void NewProtocol::CancelButton_Click() {
  // The window may be closed while one of the dialog's boxes is open.
  if (!IsOpen()) return;
  flow_.ReapplyProtocol();
  flow_.Close();
}

}  // namespace keplo
