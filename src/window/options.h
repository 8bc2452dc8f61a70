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

/// The options of the hardware: receiver, output, beep, zones and capture delay. They take effect at once and
/// are written to the file.
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

  // Show the current settings.
  void ShowInterfaceType();
  void ShowBeep();
  void ShowZoneHardware();
  void ShowProcDelay();

  // Apply what the user has chosen.
  void SetReceiver(std::int16_t kind);
  void ApplyOutput();
  void ApplyBeep();
  void ApplyZoneHardware();
  void ApplyZone();
  void AskProcDelay();

 private:
  void StoreInterfaceType(std::int32_t interfaceType);
  void ShowReceiver();
  void UseLineForZones();

  Settings& settings_;
  Win32Ser& line_;
  Controls controls_;
  SettingsKeeper& keeper_;
  Dialogue& dialogue_;
};

}  // namespace keplo
