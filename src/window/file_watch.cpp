#include "window/file_watch.h"

#include <utility>

#include "config/read_settings.h"
#include "failure.h"
#include "window/command_list.h"
#include "window/dialogue.h"
#include "window/options.h"
#include "window/port_list.h"
#include "window/protocol_place.h"

namespace keplo {

std::string TakeInOtherText(CfgStore& store) try {
  if (HasFileChanged(store)) ReloadConfig(store);
  return {};
} catch (const Failure& failure) {
  return failure.what();
}

void FileWatch::Start() {
  mod_.Store.TookInOtherText = false;
  inFile_ = mod_.Settings;
  ReadSettings(mod_.Store, inFile_);
  timer_.SetEnabled(true);
}

void FileWatch::Look() {
  if (dialogue_.IsOpen() || shown_.Protocols.Dialog() != nullptr) return;
  if (const std::string whyNot = TakeInOtherText(mod_.Store); !whyNot.empty()) shown_.Note.SetText(whyNot);
  // A save of the window's own may have taken something in as well.
  if (!std::exchange(mod_.Store.TookInOtherText, false)) return;
  shown_.Commands.Refill();
  TakeSettings();
}

void FileWatch::TakeSettings() {
  Settings now = mod_.Settings;
  if (!ReadSettings(mod_.Store, now).Complete()) return;
  const Settings before = std::exchange(inFile_, now);
  // What is in force may differ from the file, such as the delay that a failed calibration leaves.
  const auto follows = [&](auto setting) {
    if (now.*setting == before.*setting) return false;
    mod_.Settings.*setting = now.*setting;
    return true;
  };
  follows(&Settings::Analysis);
  if (follows(&Settings::InterfaceType)) shown_.Options.ShowInterfaceType();
  if (follows(&Settings::BeepOn)) shown_.Options.ShowBeep();
  if (follows(&Settings::VexilMode)) shown_.Options.ShowZoneHardware();
  if (follows(&Settings::ProcDelay)) shown_.Options.ShowProcDelay();
  if (now.ComPortNr != before.ComPortNr) shown_.Ports.Choose(now.ComPortNr);
}

}  // namespace keplo
