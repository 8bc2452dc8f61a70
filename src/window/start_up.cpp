#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "config/check_config.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/values.h"
#include "failure.h"
#include "maker.h"
#include "window/form1.h"
#include "window/new_protocol.h"

namespace keplo {

bool Form1::Form_Load() {
  failuresWhileLoading_.emplace();
  const bool loaded = Load();
  const std::string failures = *std::exchange(failuresWhileLoading_, std::nullopt);
  if (!failures.empty()) Tell(failures);
  return loaded;
}

bool Form1::Load() {
  validation_ = {};
  Timer1.SetEnabled(false);
  windowLarge_ = true;
  ShowMode();
  if (!ByShell() && !LoadFile()) return NotLoaded();
  Zone.SetEntries({"1", "2", "3", "4", "5", "6", "7", "8"});
  ListAvailableCOM();
  ShowInterfaceType();
  BeepCheckbox.SetChecked(mod_.Settings.BeepOn);
  Beep(5000, 50);
  Beep(2000, 50);
  Beep(5000, 50);
  ShowZoneHardware();
  if (!IsWhole(mod_.Store.CfgText)) return NotLoaded();
  ListProtocolsWithRecorded();
  ProcDelayparameter.SetText(std::to_string(mod_.Settings.ProcDelay));
  Protocol.Select(mod_.Settings.ProtocolIndex);
  Protocol_Click();
  HScroll1.Set(0, 0, 0);
  loaded_ = true;
  return true;
}

void Form1::Form_Unload() {
  if (!loaded_) return;
  if (newProtocol_) newProtocol_->CancelButton_Click();
  loaded_ = false;
  Timer1.SetEnabled(false);
  if (!ByShell()) line_.CloseCom();
  TakeUnsavedSettings();
  if (IsWhole(mod_.Store.CfgText)) Told([this] { SaveConfig(mod_.Store); });
}

void Form1::TakeUnsavedSettings() {
  for (const auto& [key, value] : std::exchange(unsaved_, {})) {
    // One that does not fit must keep no other from the file.
    Told([&, &key = key, &value = value] {
      const auto changed = WithGeneralValue(mod_.Store.CfgText, key, std::to_string(value));
      if (changed) mod_.Store.ReplaceText(*changed);
    });
  }
}

void Form1::OKButton_Click() {
  line_.DTR(0);
  Form_Unload();
  Hide();
}

void Form1::FileExit_Click() {
  Form_Unload();
  Hide();
}

bool Form1::ByShell() const { return mod_.Settings.PluginMode == 1; }

void Form1::ShowMode() {
  SetTitle((ByShell() ? "Orlo's Infrared Input Plugin Configuration v" : "Orlo's Keplo v") + VersionText);
  ReceiverType.SetVisible(!ByShell());
  FileExit.SetVisible(!ByShell());
  TestCheck.SetVisible(!ByShell());
  OKButton.SetVisible(ByShell());
}

bool Form1::LoadFile() try {
  LoadConfig(mod_.Store);
  return ReadSettings(mod_.Store, mod_.Settings).Complete();
} catch (const Failure& unreadable) {
  whyNotLoaded_ = unreadable.what();
  return false;
}

bool Form1::NotLoaded() {
  if (whyNotLoaded_.empty()) whyNotLoaded_ = CheckConfig(mod_.Store);
  if (!ByShell()) line_.CloseCom();
  boxes_.Error(
      "There is an error in the configuration file.\r\nThe application will be closed.\r\n"
      "Please send a message to " +
          std::string(kSupportMail) + " for support.",
      kBoxTitle, whyNotLoaded_);
  return false;
}

void Form1::ShowInterfaceType() {
  Settings& settings = mod_.Settings;
  settings.ReceiverKind = ReceiverKindOf(settings.InterfaceType);
  ShowReceiver();
  const std::int32_t output = OutputOf(settings.InterfaceType);
  if (output == 0 || output == 1) TxDCheckBox.SetChecked(output == 1);
}

void Form1::ShowZoneHardware() {
  const bool used = mod_.Settings.VexilMode > 0;
  if (used) Zone.Select(mod_.Settings.VexilMode - 1);
  Zone.SetVisible(used);
  VexilCheckbox.SetChecked(used);
  ZoneNr.SetVisible(used);
  if (used) GiveTheLineToZones();
}

void Form1::ListProtocolsWithRecorded() {
  std::vector<std::string> names = ListProtocols(mod_.Store.CfgText);
  names.emplace_back(kRecorded);
  Protocol.SetEntries(std::move(names));
}

}  // namespace keplo
