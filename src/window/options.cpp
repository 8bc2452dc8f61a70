#include <string>

#include "config/numbers.h"
#include "config/protocols.h"
#include "config/values.h"
#include "window/form1.h"

namespace keplo {

namespace {

constexpr std::int32_t kMouseReceiver = 8;  // its part of an interface type
constexpr int kLongestProcDelay = 100;
constexpr std::int32_t kZoneCharacters = 2;  // of SetMode

std::int32_t ReceiverPart(std::int32_t interfaceType) {
  return ReceiverKindOf(interfaceType) == 1 ? kMouseReceiver : 0;
}

bool IsProcDelay(std::string_view answer) {
  const double delay = Number(answer);
  return delay >= 0 && delay <= kLongestProcDelay;
}

}  // namespace

std::int32_t Form1::OutputOf(std::int32_t interfaceType) {
  return interfaceType - ReceiverPart(interfaceType);
}

void Form1::KeepSetting(const std::string& key, std::int32_t value) {
  Keep(key, value, [] {});
}

void Form1::KeepSettingAndSave(const std::string& key, std::int32_t value) {
  Keep(key, value, [this] { SaveConfig(mod_.Store); });
}

/// @param otherwise runs if the file has no such key
void Form1::Keep(const std::string& key, std::int32_t value, const std::function<void()>& otherwise) {
  if (!IsWhole(mod_.Store.CfgText)) return;
  const bool saved = Told([&] {
    if (!SetGeneralValue(mod_.Store, key, std::to_string(value))) otherwise();
  });
  if (saved) {
    unsaved_.erase(key);
  } else {
    unsaved_[key] = value;
  }
}

void Form1::KeepInterfaceType(std::int32_t interfaceType) {
  mod_.Settings.InterfaceType = interfaceType;
  KeepSetting("ITYPE", interfaceType);
}

void Form1::ShowReceiver() {
  const bool mouse = mod_.Settings.ReceiverKind == 1;
  StdDcdMenu.SetChecked(!mouse);
  IRMouseMenu.SetChecked(mouse);
  ReceiverType.SetText(mouse ? "IRMouse" : "DCDStd");
}

void Form1::StdDcdMenu_Click() {
  mod_.Settings.ReceiverKind = 0;
  ShowReceiver();
  const std::int32_t type = mod_.Settings.InterfaceType;
  if (type >= kMouseReceiver) KeepInterfaceType(type - kMouseReceiver);
}

void Form1::IRMouseMenu_Click() {
  mod_.Settings.ReceiverKind = 1;
  ShowReceiver();
  const std::int32_t type = mod_.Settings.InterfaceType;
  if (type < kMouseReceiver) KeepInterfaceType(type + kMouseReceiver);
}

void Form1::TxDCheckBox_Click() {
  const bool softwareCarrier = TxDCheckBox.Checked();
  if (softwareCarrier) line_.SetMode(1);
  KeepInterfaceType(ReceiverPart(mod_.Settings.InterfaceType) + (softwareCarrier ? 1 : 0));
}

void Form1::BeepCheckbox_Click() {
  mod_.Settings.BeepOn = BeepCheckbox.Checked();
  KeepSettingAndSave("BEEPON", mod_.Settings.BeepOn ? 1 : 0);
}

void Form1::VexilCheckbox_Click() {
  const bool used = VexilCheckbox.Checked();
  ZoneNr.SetVisible(used);
  Zone.SetVisible(used);
  if (!used) {
    mod_.Settings.VexilMode = 0;
    KeepSetting("VEXIL", 0);
    TxDCheckBox.SetEnabled(true);
  } else if (mod_.Settings.VexilMode == 0) {
    mod_.Settings.VexilMode = 1;
    Zone.Select(0);
    KeepSetting("VEXIL", 1);
    GiveTheLineToZones();
  }
}

void Form1::GiveTheLineToZones() {
  TxDCheckBox.SetChecked(false);
  TxDCheckBox.SetEnabled(false);
  line_.SetMode(kZoneCharacters);
}

void Form1::Zone_Click() {
  if (mod_.Settings.VexilMode <= 0) return;
  mod_.Settings.VexilMode = static_cast<std::int16_t>(Zone.ListIndex() + 1);
  KeepSetting("VEXIL", mod_.Settings.VexilMode);
}

void Form1::MenuProcDelay_Click() {
  std::string answer;
  do {
    answer = boxes_.Input("Enter the new ProcDelay value", "Procdelay value",
                          std::to_string(mod_.Settings.ProcDelay));
    if (answer.empty()) return;
    if (!IsProcDelay(answer)) Tell("The value must be between 0 and 100");
  } while (!IsProcDelay(answer));
  mod_.Settings.ProcDelay = Rounded<std::int16_t>(answer);
  KeepSettingAndSave("PROCDELAY", mod_.Settings.ProcDelay);
  ProcDelayparameter.SetText(std::to_string(mod_.Settings.ProcDelay));
}

}  // namespace keplo
