#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "config/protocols.h"
#include "config/read_settings.h"
#include "window/form1.h"

namespace keplo {

namespace {

constexpr int kZones = 8;

}  // namespace

bool Form1::Form_Load() {
  validation_ = {};
  Timer1.SetEnabled(false);
  windowLarge_ = true;
  ShowMode();
  if (!ByShell() && !LoadFile()) return false;
  OpenLine();
  ShowSettings();
  if (!FillProtocols()) return false;
  Protocol.Select(mod_.Settings.ProtocolIndex);
  Protocol_Click();
  HScroll1.Set(0, 0, 0);
  loaded_ = true;
  return true;
}

void Form1::Form_Unload() {
  if (!loaded_) return;
  loaded_ = false;
  Timer1.SetEnabled(false);
  if (!ByShell()) line_.CloseCom();
  Told([this] { SaveConfig(mod_.Store); });
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

bool Form1::LoadFile() {
  if (!Told([this] { LoadConfig(mod_.Store); })) return false;
  if (ReadSettings(mod_.Store, mod_.Settings).Complete()) return true;
  TellBadConfig();
  return false;
}

void Form1::OpenLine() {
  const std::int32_t port = mod_.Settings.ComPortNr;
  ComList.SetEntries({"COM " + std::to_string(port)});
  ComList.Select(0);
  ComList.SetBackColour(line_.OpenCom(port) == 1 ? ui::kGreen : ui::kRed);
  line_.RTS(-1);
  line_.TXD(0);
}

void Form1::ShowSettings() {
  const Settings& settings = mod_.Settings;
  const bool mouse = settings.InterfaceType >= 8;
  IRMouseMenu.SetChecked(mouse);
  StdDcdMenu.SetChecked(!mouse);
  ReceiverType.SetText(mouse ? "IRMouse" : "DCDStd");
  TxDCheckBox.SetChecked(settings.InterfaceType % 8 == 1);
  ProcDelayparameter.SetText(std::to_string(settings.ProcDelay));
  BeepCheckbox.SetChecked(settings.BeepOn);
  Beep(5000, 50);
  Beep(2000, 50);
  Beep(5000, 50);
  ShowZoneHardware();
}

void Form1::ShowZoneHardware() {
  std::vector<std::string> zones;
  for (int zone = 1; zone <= kZones; ++zone) zones.push_back(std::to_string(zone));
  Zone.SetEntries(std::move(zones));
  const bool used = mod_.Settings.VexilMode > 0;
  Zone.SetVisible(used);
  ZoneNr.SetVisible(used);
  VexilCheckbox.SetChecked(used);
  TxDCheckBox.SetEnabled(!used);
  if (!used) return;
  Zone.Select(mod_.Settings.VexilMode - 1);
  line_.SetMode(2);
  TxDCheckBox.SetChecked(false);
}

bool Form1::FillProtocols() {
  SectionWalk walk = WalkSections(mod_.Store.CfgText);
  if (walk.Ended != WalkEnd::ClosingHeader) {
    TellBadConfig();
    return false;
  }
  walk.Names.emplace_back(kRecorded);
  Protocol.SetEntries(std::move(walk.Names));
  return true;
}

void Form1::TellBadConfig() {
  Tell("There is an error in the configuration file.\nThe application will be closed.");
}

}  // namespace keplo
