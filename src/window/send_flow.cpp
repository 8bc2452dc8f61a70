#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "config/cfg_text.h"
#include "config/numbers.h"
#include "signal/pattern_sets.h"
#include "signal/send_bits.h"
#include "signal/zone_link.h"
#include "ui/wait_notice.h"
#include "window/form1.h"
#include "window/recorded_params.h"
#include "window/while_disabled.h"

namespace keplo {

namespace {

constexpr std::size_t kShortestCode = 6;  // characters, the leading G among them

std::optional<std::string_view> SyncTypeOf(std::int16_t gRepeat) {
  if (gRepeat == 0) return "0";
  if (gRepeat == 1) return "1";
  if (gRepeat > 10) return "2";
  return std::nullopt;
}

}  // namespace

void Form1::TestCheck_Click() { Timer1.SetEnabled(true); }

void Form1::Timer1_Timer() {
  Timer1.SetEnabled(false);
  if (TestCheck.Checked()) SendButton_Click();
  Timer1.SetEnabled(true);
}

void Form1::SendButton_Click() {
  Timer1.SetEnabled(false);
  const WhileDisabled sending(SendButton);
  if (CodeStr.BackColour() == ui::kRed) {
    Tell(" The received command is not yet validated!");
    return;
  }
  if (RecordedSelected() && !TakeRecordedParams()) return;
  if (!RecordedSelected()) ShowParams();
  HScroll1.SetEnabled(true);
  line_.DTR(0);
  line_.RTS(-1);
  const std::string code = CodeStr.Text();
  if (Trimmed(code).empty() || code.size() < kShortestCode) return;
  if (VexilCheckbox.Checked() && !SelectZone()) return;
  if (!Send(code.substr(1))) return;
  IRCommand.SetText(Protocol.Text() + " / " + SendCmd.Text());
  BitNr.SetText(std::to_string(code.size() - 1));
}

bool Form1::TakeRecordedParams() {
  if (Trimmed(BitNr.Text()).empty() || Trimmed(CodeStr.Text()).empty()) {
    Tell("Information about received command is not complete!");
    return false;
  }
  ProtocolParams& params = mod_.ProtocolParams;
  params.REPEAT = EqualNoCase(Trimmed(Rpt.Text()), "y") ? kRecordedRepeat : std::int16_t{0};
  params.GREPEAT = RecordedGRepeat(Trimmed(GType.Text()));
  const std::int16_t kind = mod_.Signal.Measured.ProtoKind;
  if (const PatternSet* patterns = FindPatternSet(kind)) {
    params.BITG = patterns->BITG;
    params.BIT0 = patterns->BIT0;
    params.BIT1 = patterns->BIT1;
  }
  if (kind != kUnknown) return true;
  Tell("You must first manually define a new protocol if UNKNOWN.");
  return false;
}

void Form1::ShowParams() {
  Rpt.SetText(mod_.ProtocolParams.REPEAT > 0 ? "Y" : "N");
  if (const auto syncType = SyncTypeOf(mod_.ProtocolParams.GREPEAT)) GType.SetText(*syncType);
  const std::int16_t kind = mod_.Signal.Measured.ProtoKind;
  // A protocol of the user's own has no generic one to show.
  if (FindPatternSet(kind) != nullptr || kind == kUnknown) GProt.SetText(ProtoKindName(kind));
}

bool Form1::SelectZone() {
  const int zone = Zone.ListIndex() + 1;
  const bool selected = SendZone(line_, static_cast<std::int16_t>(zone));
  ZoneNr.SetText(selected ? std::to_string(zone) : "?");
  return selected;
}

bool Form1::Send(std::string digits) {
  if (digits.find_first_not_of("01") != std::string::npos) {
    boxes_.Message("Please use only 1's and 0's for the code", "Error entering code");
    return false;
  }
  const auto pulse = Rounded<std::int32_t>(SendPulse.Text());
  std::string slots;
  if (!Told([&] {
        slots = PadToBytes(
            BuildSendBits(digits, mod_.Signal.Measured.ProtoKind, mod_.ProtocolParams, mod_.Rc5Toggle));
      })) {
    return false;
  }
  const ui::WaitNotice notice(*this, "Sending the command.");
  Beep(5000, 50);
  line_.IRSend(BitsToChars(slots), pulse, mod_.Settings.InterfaceType);
  Beep(2000, 50);
  if (windowLarge_) {
    mod_.Signal.RawCapture = CaptureOfSlots(slots, pulse);
    StartTrace();
  }
  return true;
}

}  // namespace keplo
