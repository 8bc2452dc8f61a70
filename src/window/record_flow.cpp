#include <cstdint>
#include <optional>
#include <string>

#include "config/lookup.h"
#include "signal/zone_link.h"
#include "ui/wait_notice.h"
#include "window/form1.h"
#include "window/while_disabled.h"

namespace keplo {

namespace {

struct KindShown {
  std::int16_t ProtoKind;
  std::string_view Params;  // caption of the frame around address and command
  ui::Colour Back;
};

constexpr KindShown kKinds[] = {
    {kNec, "NEC params", ui::kGreen}, {kSony, "SONY params", ui::kGreen}, {kRc5, "RC5 params", ui::kGreen}};
constexpr KindShown kOtherKind = {kUnknown, "", ui::kRed};

const KindShown& ShownAs(std::int16_t kind) {
  for (const KindShown& shown : kKinds) {
    if (shown.ProtoKind == kind) return shown;
  }
  return kOtherKind;
}

std::optional<ui::Colour> BackOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Validated:
      return ui::kGreen;
    case Verdict::NotValidated:
      return ui::kRed;
    default:
      return std::nullopt;
  }
}

std::string Number(std::int16_t number) { return std::to_string(number); }

/// As remotes' documentation writes an address of two numbers: "26.73".
std::string AddressText(const CodeValues& values) {
  return Number(values.Address) + (values.Extended ? "." + Number(*values.Extended) : "");
}

}  // namespace

void Form1::RecButton_Click() {
  Timer1.SetEnabled(false);
  ClearReading();
  line_.DTR(0);
  line_.RTS(-1);
  const WhileDisabled recording(RecButton);
  const ui::WaitNotice notice(*this,
                              "Recording: press a key of the remote now. Without a signal this ends after " +
                                  std::to_string(kLongestRecordWait.count()) + " seconds at most.");
  const bool received = ReceiveSignal();
  if (VexilCheckbox.Checked()) ShowReceivedZone();
  if (!received) {
    Beep(600, 1000);
    CodeStr.SetBackColour(std::nullopt);
    return;
  }
  ExplainCapture();
}

void Form1::ExplainCapture() {
  if (TrimRecording(mod_.Signal.RawCapture) != RecordStage::Code) return;
  StartTrace();
  ShowReading(ReadRecordedSamples(mod_.Signal.SampleBits, mod_.Signal.Measured, mod_.Settings.Analysis));
}

void Form1::ClearReading() {
  CodeStr.SetText({});
  for (ui::Label* field : {&plen0, &plen1, &IRCommand, &BitNr, &ToggleVal, &Rpt, &AddrVal, &CmdVal}) {
    field->SetText({});
  }
}

bool Form1::ReceiveSignal() {
  std::string& capture = mod_.Signal.RawCapture;
  capture.assign(kRecordCaptureBytes, '\0');
  const auto limit = static_cast<std::int32_t>(kRecordCaptureBytes);
  Beep(5000, 50);
  std::int32_t received = 0;
  if (mod_.Settings.ReceiverKind == 1) {
    line_.TXD(0);
    line_.RTS(-1);
    line_.DTR(-1);
    received = line_.IRRecordN(capture, mod_.Settings.ProcDelay, limit);
  } else {
    line_.RTS(-1);
    received = line_.IRRecord(capture, mod_.Settings.ProcDelay, limit);
  }
  return static_cast<std::int16_t>(received) != 0;
}

void Form1::ShowReceivedZone() {
  const std::int16_t zone = QueryZone(line_);
  ZoneNr.SetText(zone < kNoZone ? Number(zone) : "?");
}

void Form1::ShowReading(const RecordReading& reading) {
  if (reading.Ended == RecordStage::NoTiming) return;
  SendPulse.SetText(std::to_string(reading.PulseUs()));
  ShowKind(reading.ProtoKind);
  if (reading.Ended == RecordStage::Unknown) {
    CodeStr.SetBackColour(std::nullopt);
    return;
  }
  plen1.SetText(RunLengthsText(reading.Runs.Ones));
  plen0.SetText(RunLengthsText(reading.Runs.Zeros));
  BitNr.SetText(std::to_string(reading.Code.size()));
  Rpt.SetText(reading.Repeats ? "Y" : "N");
  if (reading.SyncType) GType.SetText(Number(*reading.SyncType));
  if (reading.Ended == RecordStage::Fragment) {
    CodeStr.SetBackColour(std::nullopt);
    GProt.SetText({});
    GProt.SetBackColour(ui::kRed);
    return;
  }
  const bool known = LookUp(reading);
  ShowCode(reading);
  // A new code stays on screen, with whatever protocol is selected.
  if (known) SelectCurrent();
}

void Form1::ShowKind(std::int16_t kind) {
  const KindShown& shown = ShownAs(kind);
  GProt.SetText(ProtoKindName(kind));
  GProt.SetBackColour(shown.Back);
  Frame1.SetText(shown.Params);
  if (kind == kNec || kind == kSony) ToggleVal.SetText("N");
}

bool Form1::LookUp(const RecordReading& reading) {
  CfgStore& store = mod_.Store;
  const bool known = LookupCommand(store, reading.Code, reading.ProtoKind);
  IRCommand.SetText(known ? store.CurProtocol + "&&" + store.CurCommand : "?");
  const Verdict verdict = Validate(validation_, reading.Code, reading.Repeats, known);
  CodeStr.SetBackColour(BackOf(verdict));
  if (verdict == Verdict::Known) Beep(2000, 50);
  if (verdict == Verdict::NotValidated) {
    Beep(2000, 300);
  } else {
    Beep(5000, 50);
  }
  return known;
}

void Form1::ShowCode(const RecordReading& reading) {
  CodeStr.SetText("G" + reading.Code);
  ToggleVal.SetVisible(reading.ProtoKind == kRc5);
  if (reading.Toggle) ToggleVal.SetText(std::string(1, *reading.Toggle));
  AddrVal.SetText(reading.Values ? AddressText(*reading.Values) : "");
  CmdVal.SetText(reading.Values ? Number(reading.Values->Command) : "");
}

void Form1::SelectCurrent() {
  Protocol.SelectText(mod_.Store.CurProtocol);
  SendCmd.SelectText(mod_.Store.CurCommand);
}

}  // namespace keplo
