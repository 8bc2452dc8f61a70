#pragma once

#include <cstdint>

#include "config/settings.h"
#include "signal/win32_ser.h"
#include "ui/check_box.h"
#include "ui/drop_down_list.h"
#include "ui/label.h"
#include "ui/menu_entry.h"
#include "window/settings_keeper.h"

namespace keplo {

/// How the hardware is wired and behaves: receiver, output, beep, zones and capture delay. Each option acts
/// at once on the settings and is written to the file.
class Options {
 public:
  struct Controls {
    ui::MenuEntry& StdDcdMenu;
    ui::MenuEntry& IRMouseMenu;
    ui::CheckBox& TxDCheckBox;
    ui::CheckBox& BeepCheckbox;
    ui::CheckBox& VexilCheckbox;
    ui::DropDownList& Zone;
    ui::Label& ZoneNr;
    ui::Label& ReceiverType;
    ui::Label& ProcDelayparameter;
  };

  Options(Settings& settings, Win32Ser& line, const Controls& controls, SettingsKeeper& keeper,
          Dialogue& dialogue)
      : settings_(settings), line_(line), controls_(controls), keeper_(keeper), dialogue_(dialogue) {}

  // What the settings say, shown while the window comes up.
  void ShowInterfaceType();
  void ShowBeep();
  void ShowZoneHardware();
  void ShowProcDelay();

  void TakeReceiver(std::int16_t kind);
  void TakeOutput();
  void TakeBeep();
  void TakeZoneHardware();
  void TakeZone();
  void AskProcDelay();

 private:
  void KeepInterfaceType(std::int32_t interfaceType);
  void ShowReceiver();
  void GiveTheLineToZones();

  Settings& settings_;
  Win32Ser& line_;
  Controls controls_;
  SettingsKeeper& keeper_;
  Dialogue& dialogue_;
};

}  // namespace keplo
