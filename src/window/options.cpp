#include "window/options.h"

#include <string>

#include "config/parse_number.h"

namespace keplo {

namespace {

constexpr std::int32_t kMouseReceiver = 8;  // added to the interface type
constexpr int kLongestProcDelay = 100;
constexpr std::int32_t kZoneMode = 2;  // for SetMode

std::int32_t ReceiverPart(std::int32_t interfaceType) {
  return ReceiverKindOf(interfaceType) == 1 ? kMouseReceiver : 0;
}

bool IsProcDelay(std::string_view answer) {
  const double delay = Number(answer);
  return delay >= 0 && delay <= kLongestProcDelay;
}

}  // namespace

void Options::ShowInterfaceType() {
  settings_.ReceiverKind = ReceiverKindOf(settings_.InterfaceType);
  ShowReceiver();
  const std::int32_t output = settings_.InterfaceType - ReceiverPart(settings_.InterfaceType);
  if (output == 0 || output == 1) controls_.TxDCheckBox.SetChecked(output == 1);
}

void Options::ShowBeep() { controls_.BeepCheckbox.SetChecked(settings_.BeepOn); }

void Options::ShowZoneHardware() {
  const bool used = settings_.VexilMode > 0;
  if (used) controls_.Zone.Select(settings_.VexilMode - 1);
  controls_.Zone.SetVisible(used);
  controls_.VexilCheckbox.SetChecked(used);
  controls_.ZoneNr.SetVisible(used);
  if (used) UseLineForZones();
}

void Options::ShowProcDelay() { controls_.ProcDelayparameter.SetText(std::to_string(settings_.ProcDelay)); }

void Options::StoreInterfaceType(std::int32_t interfaceType) {
  settings_.InterfaceType = interfaceType;
  keeper_.StoreSetting("ITYPE", interfaceType);
}

void Options::ShowReceiver() {
  const bool mouse = settings_.ReceiverKind == 1;
  controls_.StdDcdMenu.SetChecked(!mouse);
  controls_.IRMouseMenu.SetChecked(mouse);
  controls_.ReceiverType.SetText(mouse ? "IRMouse" : "DCDStd");
}

void Options::SetReceiver(std::int16_t kind) {
  settings_.ReceiverKind = kind;
  ShowReceiver();
  const std::int32_t type = settings_.InterfaceType;
  if (kind != ReceiverKindOf(type)) StoreInterfaceType(type + (kind == 1 ? kMouseReceiver : -kMouseReceiver));
}

void Options::ApplyOutput() {
  const bool softwareCarrier = controls_.TxDCheckBox.Checked();
  if (softwareCarrier) line_.SetMode(1);
  StoreInterfaceType(ReceiverPart(settings_.InterfaceType) + (softwareCarrier ? 1 : 0));
}

void Options::ApplyBeep() {
  settings_.BeepOn = controls_.BeepCheckbox.Checked();
  keeper_.StoreAndSave("BEEPON", settings_.BeepOn ? 1 : 0);
}

void Options::ApplyZoneHardware() {
  const bool used = controls_.VexilCheckbox.Checked();
  controls_.ZoneNr.SetVisible(used);
  controls_.Zone.SetVisible(used);
  if (!used) {
    settings_.VexilMode = 0;
    keeper_.StoreSetting("VEXIL", 0);
    controls_.TxDCheckBox.SetEnabled(true);
  } else if (settings_.VexilMode == 0) {
    settings_.VexilMode = 1;
    controls_.Zone.Select(0);
    keeper_.StoreSetting("VEXIL", 1);
    UseLineForZones();
  }
}

void Options::UseLineForZones() {
  controls_.TxDCheckBox.SetChecked(false);
  controls_.TxDCheckBox.SetEnabled(false);
  line_.SetMode(kZoneMode);
}

void Options::ApplyZone() {
  if (settings_.VexilMode <= 0) return;
  settings_.VexilMode = static_cast<std::int16_t>(controls_.Zone.ListIndex() + 1);
  keeper_.StoreSetting("VEXIL", settings_.VexilMode);
}

void Options::AskProcDelay() {
  std::string answer;
  do {
    answer = dialogue_.Input("Enter the new ProcDelay value", "Procdelay value",
                             std::to_string(settings_.ProcDelay));
    if (answer.empty()) return;
    if (!IsProcDelay(answer)) dialogue_.Tell("The value must be between 0 and 100");
  } while (!IsProcDelay(answer));
  settings_.ProcDelay = Rounded<std::int16_t>(answer);
  keeper_.StoreAndSave("PROCDELAY", settings_.ProcDelay);
  ShowProcDelay();
}

}  // namespace keplo
