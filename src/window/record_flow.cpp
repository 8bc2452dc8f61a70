#include "window/record_flow.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "config/commands.h"
#include "config/lookup.h"
#include "config/raw_lookup.h"
#include "signal/sample_bits.h"
#include "signal/zone_link.h"
#include "ui/wait_notice.h"
#include "window/disable_guard.h"
#include "window/why_not_learnable.h"

namespace keplo {

namespace {

struct KindShown {
  std::string_view Params;  // caption of the frame around address and command
  std::int16_t ProtoKind;
  ui::Colour Back;
};

constexpr KindShown kKinds[] = {{"NEC params", kNec, ui::kGreen},
                                {"SONY params", kSony, ui::kGreen},
                                {"RC5 params", kRc5, ui::kGreen},
                                {"RC6 params", kRc6, ui::kGreen}};
constexpr KindShown kOtherKind = {"", kUnknown, ui::kRed};

const KindShown& ShownAs(std::int16_t kind) {
  for (const KindShown& shown : kKinds) {
    if (shown.ProtoKind == kind) return shown;
  }
  return kOtherKind;
}

std::optional<ui::Colour> BackColourOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Validated:
      return ui::kGreen;
    case Verdict::NotValidated:
      return ui::kRed;
    default:
      return std::nullopt;
  }
}

/// Whether an analysis has read a code that can be stored.
bool HasCode(const RecordReading& reading) {
  return reading.Ended == RecordStage::Code && !reading.Code.empty() &&
         reading.Code.find_first_of("xy") == std::string::npos;
}

bool HasStoredCode(CfgStore& store, const RecordReading& reading) {
  return reading.Ended == RecordStage::Code &&
         LookupCommand(store, reading.Code, reading.ProtoKind, reading.ReadBy);
}

std::string Number(std::int16_t number) { return std::to_string(number); }

/// An address of two numbers is written "26.73".
std::string AddressText(const CodeValues& values) {
  return Number(values.Address) + (values.Extended ? "." + Number(*values.Extended) : "");
}

}  // namespace

void RecordFlow::Record() {
  controls_.SendLoop.SetEnabled(false);
  ClearReading();
  line_.DTR(0);
  line_.RTS(-1);
  const DisableGuard recording(controls_.RecButton);
  const ui::WaitNotice notice(window_,
                              "Recording: press a key of the remote now. Without a signal this ends after " +
                                  std::to_string(kLongestRecordWait.count()) + " seconds at most.");
  note_.KeepLineMessages();
  const bool received = ReceiveSignal();
  if (controls_.VexilCheckbox.Checked()) ShowReceivedZone();
  if (!received) {
    beeps_.Sound(600, 1000);
    fields_.CodeStr.SetBackColour(std::nullopt);
    note_.Show("No signal came.");
    return;
  }
  remark_.clear();
  const RecordStage trimmed = TrimRecording(mod_.Signal.RawCapture);
  if (trimmed == RecordStage::Code) {
    waveform_.StartTrace();
    ReadCapture();
  } else {
    remark_ = WhyNotLearnable(RecordReading(trimmed));
  }
  note_.Show(remark_);
}

std::string RecordFlow::Explain(const OpenedRecording& recording) {
  controls_.SendLoop.SetEnabled(false);
  ClearReading();
  fields_.CodeStr.SetBackColour(std::nullopt);
  place_ = recording.Place;
  mod_.Signal.RawCapture = recording.Capture;
  mod_.Signal.SampleTime = recording.SampleTime;
  const RecordStage trimmed = TrimRecording(mod_.Signal.RawCapture);
  waveform_.StartTrace();
  remark_ = WhyNotLearnable(RecordReading(trimmed));
  if (trimmed == RecordStage::Code) ReadCapture();
  return remark_;
}

void RecordFlow::ReadCapture() {
  RecordReading reading;
  ReadTrimmedRecording(mod_.Signal, mod_.Settings.Analysis, reading);
  mod_.Signal.SendAs = reading.SendAs;
  remark_ = WhyNotLearnable(reading);
  if (!ShowRaw(reading)) ShowReading(reading);
}

void RecordFlow::ClearReading() {
  fields_.CodeStr.SetText({});
  for (ui::Label* field : {&fields_.plen0, &fields_.plen1, &fields_.IRCommand, &fields_.BitNr,
                           &fields_.ToggleVal, &fields_.Rpt, &fields_.AddrVal, &fields_.CmdVal}) {
    field->SetText({});
  }
}

bool RecordFlow::ReceiveSignal() {
  std::string& capture = mod_.Signal.RawCapture;
  capture.assign(kRecordCaptureBytes, '\0');
  mod_.Signal.SampleTime = line_.SampleTime(mod_.Settings.ProcDelay);
  place_.clear();
  const auto limit = static_cast<std::int32_t>(kRecordCaptureBytes);
  beeps_.Sound(5000, 50);
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

void RecordFlow::ShowReceivedZone() {
  const std::int16_t zone = QueryZone(line_);
  fields_.ZoneNr.SetText(zone < kNoZone ? Number(zone) : "?");
}

void RecordFlow::ShowReading(const RecordReading& reading) {
  if (reading.Ended == RecordStage::NoTiming) return;
  fields_.SendPulse.SetText(std::to_string(reading.PulseUs()));
  ShowKind(reading.ProtoKind);
  if (reading.Ended == RecordStage::Unknown) {
    fields_.CodeStr.SetBackColour(std::nullopt);
    return;
  }
  fields_.plen1.SetText(RunLengthsText(reading.Runs.Ones));
  fields_.plen0.SetText(RunLengthsText(reading.Runs.Zeros));
  fields_.BitNr.SetText(std::to_string(reading.Code.size()));
  fields_.Rpt.SetText(reading.Repeats ? "Y" : "N");
  if (reading.SyncType) fields_.GType.SetText(Number(*reading.SyncType));
  if (reading.Ended == RecordStage::Fragment) {
    fields_.CodeStr.SetBackColour(std::nullopt);
    fields_.GProt.SetText({});
    fields_.GProt.SetBackColour(ui::kRed);
    return;
  }
  const bool known = LookUp(reading);
  ShowCode(reading);
  // For a new code the selection is kept, since selecting a command would replace the code.
  if (known) SelectCurrent();
}

void RecordFlow::ShowKind(std::int16_t kind) {
  const KindShown& shown = ShownAs(kind);
  fields_.GProt.SetText(ProtoKindName(kind));
  fields_.GProt.SetBackColour(shown.Back);
  fields_.Frame1.SetText(shown.Params);
  if (kind == kNec || kind == kSony) fields_.ToggleVal.SetText("N");
}

bool RecordFlow::LookUp(const RecordReading& reading) {
  CfgStore& store = mod_.Store;
  const bool known = LookupCommand(store, reading.Code, reading.ProtoKind, reading.ReadBy);
  fields_.IRCommand.SetText(known ? store.CurProtocol + "&&" + store.CurCommand : "?");
  validation_.ReadBy = reading.ReadBy;
  const Verdict verdict = Validate(validation_, {reading.Code, place_}, reading.Repeats, known);
  ShowVerdict(verdict);
  return known;
}

void RecordFlow::ShowVerdict(Verdict verdict) {
  fields_.CodeStr.SetBackColour(BackColourOf(verdict));
  if (verdict == Verdict::Known) beeps_.Sound(2000, 50);
  if (verdict == Verdict::NotValidated) {
    beeps_.Sound(2000, 300);
  } else {
    beeps_.Sound(5000, 50);
  }
}

/// Shows a press of a raw command, or one that no analysis can read and that could become a raw command.
/// @return false for any other press
bool RecordFlow::ShowRaw(const RecordReading& reading) {
  CfgStore& store = mod_.Store;
  if (mod_.Settings.Analysis != Analysis::Second || HasStoredCode(store, reading)) return false;
  if (const auto known = FindRawCommand(store, mod_.Signal)) {
    const auto code = ShownCode(store.CfgText, known->Protocol, known->Command);
    const RawSignal* signal = code ? FindRawSignal(store, *code) : nullptr;
    if (signal == nullptr) return false;
    validation_.CmdValidated = true;
    ShowRawSignal(*signal, Verdict::Known, *known);
    store.CurProtocol = known->Protocol;
    store.CurCommand = known->Command;
    SelectCurrent();
    return true;
  }
  if (HasCode(reading) && IsReadByMonitor(mod_.Signal.RawCapture, reading.Code, mod_.Signal.SampleTime))
    return false;
  if (const std::string alike = AmbiguousRawText(store, mod_.Signal); !alike.empty()) {
    remark_ = "No code: it " + alike + ".";
    return false;
  }
  RawSignal signal;
  const HeardLengths heard = HeardIn(mod_.Signal);
  if (!rawLesson_.Hear(heard, place_)) return false;
  const Verdict verdict = LearnRaw(signal);
  ShowRawSignal(signal, verdict, {});
  return true;
}

/// The raw command that the presses so far suggest: that of the last press, or of two forms that alternate.
Verdict RecordFlow::LearnRaw(RawSignal& signal) {
  std::vector<RawLesson::Form> forms = {rawLesson_.Last()};
  if (rawLesson_.TakesTurns()) forms = rawLesson_.Turns();
  signal = MakeRawSignal(mod_.Store.CfgText, forms);
  mod_.Store.Raw.Known.insert_or_assign(signal.Digits, signal);
  validation_.CmdValidated = forms.size() > 1 || rawLesson_.IsLastConfirmed();
  validation_.ValidationStep = 0;
  validation_.ReadBy = Analysis::Second;
  return validation_.CmdValidated ? Verdict::Validated : Verdict::NotValidated;
}

void RecordFlow::ShowRawSignal(const RawSignal& signal, Verdict verdict, const FoundCommand& known) {
  const RawLengths& lengths = signal.Forms.front();
  std::vector<int> ones, zeros;  // samples
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    (i % 2 == 0 ? ones : zeros).push_back((lengths[i] + kNominalSampleTime / 2) / kNominalSampleTime);
  }
  mod_.Signal.Measured.ProtoKind = kUnknown;
  mod_.Signal.SendAs.clear();
  fields_.SendPulse.SetText(std::to_string(*std::min_element(lengths.begin(), lengths.end())));
  fields_.GProt.SetText("RAW");
  fields_.GProt.SetBackColour(ui::kGreen);
  fields_.Frame1.SetText({});
  fields_.GType.SetText({});
  fields_.plen1.SetText(RunLengthsText(ones));
  fields_.plen0.SetText(RunLengthsText(zeros));
  fields_.BitNr.SetText(std::to_string(signal.Digits.size()));
  fields_.Rpt.SetText("N");
  fields_.IRCommand.SetText(verdict == Verdict::Known ? known.Protocol + "&&" + known.Command : "?");
  fields_.CodeStr.SetText("G" + signal.Digits);
  remark_.clear();
  if (signal.Forms.size() > 1 && verdict == Verdict::Validated) {
    remark_ = "The remote sends two signals in turn; both are stored with the command.";
  }
  ShowVerdict(verdict);
}

void RecordFlow::ShowCode(const RecordReading& reading) {
  fields_.CodeStr.SetText("G" + reading.Code);
  fields_.ToggleVal.SetVisible(reading.ProtoKind == kRc5 || reading.ProtoKind == kRc6);
  if (reading.Toggle) fields_.ToggleVal.SetText(std::string(1, *reading.Toggle));
  fields_.AddrVal.SetText(reading.Values ? AddressText(*reading.Values) : "");
  fields_.CmdVal.SetText(reading.Values ? Number(reading.Values->Command) : "");
}

void RecordFlow::SelectCurrent() {
  controls_.Protocol.SelectText(mod_.Store.CurProtocol);
  controls_.SendCmd.SelectText(mod_.Store.CurCommand);
}

}  // namespace keplo
