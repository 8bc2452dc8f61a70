#include "window/new_protocol.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "config/generic_protocols.h"
#include "config/numbers.h"
#include "config/protocols.h"
#include "window/form1.h"
#include "window/recorded_params.h"

namespace keplo {

namespace {

/// What the dialog offers for a recorded line code.
struct RecordedKind {
  std::int16_t ProtoKind;
  int Entry;                // of the generic protocols
  std::string_view Repeat;  // empty: as the entry has it
};
constexpr std::array<RecordedKind, 4> kRecordedKinds = {
    {{kNec, 0, "50"}, {kSony, 1, "50"}, {kRc5, 2, "90"}, {kUnknown, 3, {}}}};

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

NewProtocol::NewProtocol(Form1& form, KeploMod& mod, ui::Boxes& boxes)
    : form_(form), mod_(mod), boxes_(boxes) {
  SetTitle("Protocol Parameters");
  GProtoIn.OnClick = [this] { GProtoIn_Click(); };
  CreateButton.OnClick = [this] { CreateButton_Click(); };
  CancelButton.OnClick = [this] { CancelButton_Click(); };
}

bool NewProtocol::IsNew() const { return mod_.ProtocolFormMode == kNewProtocolMode; }

void NewProtocol::Form_Load() {
  for (const GenericProtocol& generic : kGenericProtocols) GProtoIn.Add(generic.Name);
  if (EqualNoCase(mod_.Store.CurProtocol, kRecorded) && CodeShown()) {
    TakeRecording();
  } else if (!TakeSection()) {
    Refuse();
  }
}

bool NewProtocol::CodeShown() const {
  return !Trimmed(form_.CodeStr.Text()).empty() && !Trimmed(form_.BitNr.Text()).empty();
}

void NewProtocol::TakeRecording() {
  ProtocolParams& params = mod_.ProtocolParams;
  params.REPEAT = EqualNoCase(Trimmed(form_.Rpt.Text()), "y") ? kRecordedRepeat : std::int16_t{0};
  params.GREPEAT = RecordedGRepeat(Trimmed(form_.GType.Text()));
  const std::int16_t kind = mod_.Signal.Measured.ProtoKind;
  for (const RecordedKind& recorded : kRecordedKinds) {
    if (recorded.ProtoKind != kind) continue;
    GProtoIn.Select(recorded.Entry);
    if (!recorded.Repeat.empty()) RepeatIn.SetText(recorded.Repeat);
  }
  if (const PatternSet* patterns = FindPatternSet(kind)) {
    params.BITG = patterns->BITG;
    params.BIT0 = patterns->BIT0;
    params.BIT1 = patterns->BIT1;
  }
  SendPlsIn.SetText(form_.SendPulse.Text());
  BitGIn.SetText(params.BITG);
  Bit0In.SetText(params.BIT0);
  Bit1In.SetText(params.BIT1);
}

bool NewProtocol::TakeSection() {
  CfgStore& store = mod_.Store;
  if (IsNew()) store.CurProtocol = "Template";
  SavedProtocolIndex = static_cast<std::int16_t>(form_.Protocol.ListIndex());
  const std::optional<ProtocolDraft> stored = LoadProtocol(store.CfgText, store.CurProtocol);
  if (!stored) return false;
  KeepParams(*stored);
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
  Tell("Error in the configuration file\r\nThe Protocol Form can not be opened");
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
    KeepParams(draft);
  }
  SectionChange planned(refusal);
  if (refusal == ProtocolRefusal::None) {
    store.CurProtocol = draft.Name;
    planned = IsNew() ? NewSection(store.CfgText, draft) : EditedSection(store.CfgText, draft);
  }
  if (planned.Refused != ProtocolRefusal::None) {
    Tell(RefusalText(planned.Refused));
    return;
  }
  const Splice& change = planned.Change;
  store.CfgPos = change.First;
  store.CfgPos2 = change.Last;
  store.NewCmdLine = change.Block;
  if (!Agreed(change.Block) || !Saved(draft, change)) return;
  if (IsNew() && !ListProtocolsAgain()) return;
  form_.MakeProtocolCurrent(SavedProtocolIndex);
  form_.UnloadProtocolDialog();
  ShowSendPulse();
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
  // Without a selection the first entry counts; the section could not be read again with any other number.
  draft.ProtoKind = static_cast<std::int16_t>(std::max(GProtoIn.ListIndex(), 0));
  draft.Params.SENDPLS = Rounded<std::int16_t>(SendPlsIn.Text());
  draft.Params.REPEAT = Rounded<std::int16_t>(RepeatIn.Text());
  draft.Params.GREPEAT = Rounded<std::int16_t>(GRepeatIn.Text());
  draft.Params.BITG = Trimmed(BitGIn.Text());
  draft.Params.BIT0 = Trimmed(Bit0In.Text());
  draft.Params.BIT1 = Trimmed(Bit1In.Text());
  return draft;
}

void NewProtocol::KeepParams(const ProtocolDraft& draft) {
  mod_.Signal.Measured.ProtoKind = draft.ProtoKind;
  std::string tail = std::move(mod_.ProtocolParams.BitTail);
  mod_.ProtocolParams = draft.Params;
  mod_.ProtocolParams.BitTail = std::move(tail);
}

bool NewProtocol::Agreed(const std::string& block) {
  const std::string question =
      IsNew() ? "A new protocol with the following parameters will be created:\r\n" + block + "\r\n"
              : "The new parameters of the selected protocol are:\r\n" + block + "\r\n\r\n";
  return boxes_.Question(question + "Do you want to save it?", kBoxTitle) && IsOpen();
}

bool NewProtocol::IsOpen() const { return form_.ProtocolDialog() == this; }

bool NewProtocol::Saved(const ProtocolDraft& draft, const Splice& change) {
  CfgStore& store = mod_.Store;
  const std::string before = store.CfgText;
  const std::string text = change.In(before);
  if (IsNew()) SavedProtocolIndex = static_cast<std::int16_t>(ProtocolIndexOf(text, draft.Name));
  // Section and selection in one save: a second one could fail and contradict the first.
  const bool done = form_.Told([&] { ReplaceAndSave(store, WithCurrentProtocol(text, SavedProtocolIndex)); });
  form_.Undo.Remember(before);
  // A failure at the very end of a save leaves the new text in place.
  return (done || store.CfgText != before) && IsOpen();
}

bool NewProtocol::ListProtocolsAgain() {
  SectionWalk walk = WalkSections(mod_.Store.CfgText);
  if (walk.Ended == WalkEnd::NoGeneral) {
    form_.Protocol.Clear();
    Tell("Error in the configuration file");
    return false;
  }
  walk.Names.emplace_back(kRecorded);
  form_.Protocol.SetEntries(std::move(walk.Names));
  return true;
}

void NewProtocol::ShowSendPulse() { form_.SendPulse.SetText(KeyNumber(mod_.ProtocolParams.SENDPLS)); }

void NewProtocol::CancelButton_Click() {
  // A box of the dialog may stand open while the window is closed.
  if (!IsOpen()) return;
  form_.TakeSelectedProtocol();
  form_.UnloadProtocolDialog();
}

void NewProtocol::Tell(std::string_view text) { boxes_.Message(text, kBoxTitle); }

}  // namespace keplo
