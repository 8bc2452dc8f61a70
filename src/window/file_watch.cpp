#include "window/file_watch.h"

#include <utility>

#include "config/read_settings.h"
#include "failure.h"
#include "window/command_list.h"
#include "window/dialogue.h"
#include "window/options.h"
#include "window/port_list.h"
#include "window/protocol_flow.h"

namespace keplo {

std::string ReloadIfChanged(CfgStore& store) try {
  if (HasFileChanged(store)) ReloadConfig(store);
  return {};
} catch (const Failure& failure) {
  return failure.what();
}

void FileWatch::Start() {
  mod_.Store.MergedOtherText = false;
  inFile_ = mod_.Settings;
  ReadSettings(mod_.Store, inFile_);
  timer_.SetEnabled(true);
}

void FileWatch::Check() {
  if (dialogue_.IsOpen() || shown_.Protocols.Dialog() != nullptr) return;
  if (const std::string whyNot = ReloadIfChanged(mod_.Store); !whyNot.empty()) shown_.Note.SetText(whyNot);
  // A save by the window may have merged something as well.
  if (!std::exchange(mod_.Store.MergedOtherText, false)) return;
  shown_.Commands.Refill();
  ApplySettings();
}

void FileWatch::ApplySettings() {
  Settings now = mod_.Settings;
  if (!ReadSettings(mod_.Store, now).Complete()) return;
  const Settings before = std::exchange(inFile_, now);
  // Only applies settings that changed in the file: others may differ from it on purpose, such as the delay
  // after a failed calibration.
  const auto applyIfChanged = [&](auto setting) {
    if (now.*setting == before.*setting) return false;
    mod_.Settings.*setting = now.*setting;
    return true;
  };
  applyIfChanged(&Settings::Analysis);
  if (applyIfChanged(&Settings::InterfaceType)) shown_.Options.ShowInterfaceType();
  if (applyIfChanged(&Settings::BeepOn)) shown_.Options.ShowBeep();
  if (applyIfChanged(&Settings::VexilMode)) shown_.Options.ShowZoneHardware();
  if (applyIfChanged(&Settings::ProcDelay)) shown_.Options.ShowProcDelay();
  if (now.ComPortNr != before.ComPortNr) shown_.Ports.Choose(now.ComPortNr);
}

}  // namespace keplo
