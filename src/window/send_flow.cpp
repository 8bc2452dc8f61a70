#include "window/send_flow.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "config/cfg_text.h"
#include "config/parse_number.h"
#include "signal/pattern_sets.h"
#include "signal/raw/raw_digits.h"
#include "signal/raw/raw_send.h"
#include "signal/send_bits.h"
#include "signal/zone_link.h"
#include "ui/wait_notice.h"
#include "window/disable_guard.h"
#include "window/recorded_signal.h"

namespace keplo {

namespace {

constexpr std::size_t kShortestCode = 6;  // characters, including the leading G

std::optional<std::string_view> SyncTypeOf(std::int16_t gRepeat) {
  if (gRepeat == 0) return "0";
  if (gRepeat == 1) return "1";
  if (gRepeat > 10) return "2";
  return std::nullopt;
}

}  // namespace

void SendFlow::SendAgain() {
  controls_.Loop.SetEnabled(false);
  if (controls_.TestCheck.Checked()) Send();
  controls_.Loop.SetEnabled(true);
}

void SendFlow::Send() {
  controls_.Loop.SetEnabled(false);
  const DisableGuard sending(controls_.SendButton);
  if (fields_.CodeStr.BackColour() == ui::kRed) {
    dialogue_.Tell(" The received command is not yet validated!");
    return;
  }
  const RawSignal* raw = FindRawSignal(mod_.Store, fields_.CodeStr.Text());
  if (raw != nullptr) {
    ShowRaw();
  } else if (!IsRecorded(mod_.Store.CurProtocol)) {
    ShowParams();
  } else if (!UseRecordedParams()) {
    return;
  }
  controls_.HScroll1.SetEnabled(true);
  PrepareToSend(line_);
  const std::string code = fields_.CodeStr.Text();
  if (Trimmed(code).empty() || code.size() < kShortestCode) return;
  if (controls_.VexilCheckbox.Checked() && !SelectZone()) return;
  if (raw != nullptr) {
    SendRaw(*raw);
  } else if (!SendDigits(code.substr(1))) {
    return;
  }
  fields_.IRCommand.SetText(controls_.Protocol.Text() + " / " + controls_.SendCmd.Text());
  fields_.BitNr.SetText(std::to_string(code.size() - 1));
}

bool SendFlow::UseRecordedParams() {
  const RecordedSignal recorded = ShownSignal(fields_, mod_.Signal.Measured.ProtoKind);
  if (!recorded.HasCode()) {
    dialogue_.Tell("Information about received command is not complete!");
    return false;
  }
  SetParams(recorded, mod_.ProtocolParams);
  mod_.ProtocolParams.SENDAS = mod_.Signal.SendAs;
  if (recorded.ProtoKind != kUnknown) return true;
  dialogue_.Tell("You must first manually define a new protocol if UNKNOWN.");
  return false;
}

void SendFlow::ShowParams() {
  fields_.Rpt.SetText(mod_.ProtocolParams.REPEAT > 0 ? "Y" : "N");
  if (const auto syncType = SyncTypeOf(mod_.ProtocolParams.GREPEAT)) fields_.GType.SetText(*syncType);
  const std::int16_t kind = mod_.Signal.Measured.ProtoKind;
  // A custom protocol has no generic one to show.
  if (FindPatternSet(kind) != nullptr || kind == kUnknown) fields_.GProt.SetText(ProtoKindName(kind));
}

void SendFlow::ShowRaw() {
  fields_.Rpt.SetText("N");
  fields_.GType.SetText({});
  fields_.GProt.SetText("RAW");
}

void SendFlow::SendRaw(const RawSignal& signal) {
  const bool isRecorded = IsRecorded(mod_.Store.CurProtocol);
  Transmit(TransmissionOfRaw(signal, rawSent_, isRecorded ? kUsualCarrier : mod_.ProtocolParams.Carrier));
  ShowSent(CaptureOfLengths(signal.Forms[rawSent_++ % signal.Forms.size()]));
}

void SendFlow::Transmit(const Transmission& transmission) {
  const ui::WaitNotice notice(window_, "Sending the command.");
  note_.KeepLineMessages();
  beeps_.Sound(5000, 50);
  PutOnAir(line_, transmission, mod_.Settings.InterfaceType);
  beeps_.Sound(2000, 50);
}

void SendFlow::ShowSent(std::string capture) {
  if (showsTrace_()) {
    mod_.Signal.RawCapture = std::move(capture);
    mod_.Signal.SampleTime = kNominalSampleTime;
    waveform_.StartTrace();
  }
  note_.Show();
}

bool SendFlow::SelectZone() {
  const int zone = controls_.Zone.ListIndex() + 1;
  const bool selected = SendZone(line_, static_cast<std::int16_t>(zone));
  fields_.ZoneNr.SetText(selected ? std::to_string(zone) : "?");
  return selected;
}

bool SendFlow::SendDigits(const std::string& digits) {
  if (AreRawDigits(digits)) {
    dialogue_.Tell("The lengths of this raw command are missing or damaged, so that it cannot be sent.");
    return false;
  }
  if (digits.find_first_not_of("01") != std::string::npos) {
    dialogue_.Tell("Please use only 1's and 0's for the code", {}, "Error entering code");
    return false;
  }
  Transmission transmission;
  if (!dialogue_.RunAndReport([&] {
        transmission =
            TransmissionOfDigits(digits, mod_.Signal.Measured.ProtoKind, mod_.ProtocolParams, mod_.Rc5Toggle);
      })) {
    return false;
  }
  const auto pulse = Rounded<std::int32_t>(fields_.SendPulse.Text());
  if (pulse != mod_.ProtocolParams.SENDPLS) transmission.Slot = pulse;
  Transmit(transmission);
  ShowSent(CaptureOfSlots(transmission.Slots, transmission.Slot));
  return true;
}

}  // namespace keplo
