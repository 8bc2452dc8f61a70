#include <string>
#include <string_view>
#include <vector>

#include "config/check_config.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "failure.h"
#include "keplo_mod.h"
#include "links.h"
#include "window/flows.h"
#include "window/form1.h"
#include "window/new_protocol.h"

namespace keplo {

bool Form1::Form_Load() {
  flows_->Dialogue.CollectFailures();
  const bool loaded = Load();
  flows_->Dialogue.ReportCollected();
  return loaded;
}

bool Form1::Load() {
  flows_->Validation = {};
  Timer1.SetEnabled(false);
  windowLarge_ = true;
  ShowMode();
  if (!IsOpenedByHost() && !LoadFile()) return FailToLoad();
  Zone.SetEntries({"1", "2", "3", "4", "5", "6", "7", "8"});
  ListAvailableCOM();
  flows_->Options.ShowInterfaceType();
  flows_->Options.ShowBeep();
  Beeps beeps(line_, mod_.Settings);
  beeps.Sound(5000, 50);
  beeps.Sound(2000, 50);
  beeps.Sound(5000, 50);
  flows_->Options.ShowZoneHardware();
  if (!IsWhole(mod_.Store.CfgText)) return FailToLoad();
  flows_->Commands.ListProtocols();
  flows_->Options.ShowProcDelay();
  Protocol.Select(mod_.Settings.ProtocolIndex);
  Protocol_Click();
  HScroll1.Set(0, 0, 0);
  const std::vector<std::string>& damage = mod_.Store.Raw.Damage;
  flows_->Note.Show(damage.empty() ? std::string_view() : damage.front());
  flows_->File.Start();
  loaded_ = true;
  return true;
}

void Form1::Form_Unload() {
  if (!loaded_) return;
  if (NewProtocol* dialog = ProtocolDialog()) dialog->CancelButton_Click();
  loaded_ = false;
  Timer1.SetEnabled(false);
  flows_->File.Stop();
  if (!IsOpenedByHost()) line_.CloseCom();
  flows_->Settings.ApplyUnsaved();
  if (IsWhole(mod_.Store.CfgText)) flows_->Dialogue.RunAndReport([this] { SaveConfig(mod_.Store); });
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

bool Form1::IsOpenedByHost() const { return mod_.Settings.PluginMode == 1; }

void Form1::ShowMode() {
  SetTitle((IsOpenedByHost() ? "Orlo's Infrared Input Plugin Configuration v" : "Orlo's Keplo v") +
           VersionText);
  ReceiverType.SetVisible(!IsOpenedByHost());
  FileExit.SetVisible(!IsOpenedByHost());
  TestCheck.SetVisible(!IsOpenedByHost());
  OKButton.SetVisible(IsOpenedByHost());
}

bool Form1::LoadFile() try {
  LoadConfig(mod_.Store);
  return ReadSettings(mod_.Store, mod_.Settings).Complete();
} catch (const Failure& unreadable) {
  loadFailure_ = unreadable.what();
  return false;
}

bool Form1::FailToLoad() {
  if (loadFailure_.empty()) loadFailure_ = CheckConfig(mod_.Store);
  if (!IsOpenedByHost()) line_.CloseCom();
  flows_->Dialogue.ReportError(
      "There is an error in the configuration file.\r\nThe application will be closed.\r\n"
      "Please send a message to " +
          std::string(kSupportMail) + " for support.",
      loadFailure_);
  return false;
}

}  // namespace keplo
