#pragma once

#include <cstdint>

#include "config/settings.h"
#include "signal/win32_ser.h"
#include "ui/drop_down_list.h"
#include "ui/window.h"
#include "window/line_note.h"
#include "window/settings_keeper.h"

namespace keplo {

/// The list of serial ports.
class PortList {
 public:
  /// @param window shows a notice while the user has to wait
  PortList(Settings& settings, Win32Ser& line, ui::DropDownList& list, SettingsKeeper& keeper,
           Dialogue& dialogue, LineNote& note, const ui::Window& window)
      : settings_(settings),
        line_(line),
        list_(list),
        keeper_(keeper),
        dialogue_(dialogue),
        note_(note),
        window_(window) {}

  /// Tries the ports 1 to 30 and lists those that open. The configured one is selected and opened.
  void Fill();
  /// Selects a port if it is in the list.
  void Choose(std::int32_t port);
  /// Opens the selected port.
  void OpenSelected();

 private:
  void Probe();
  bool Opens(std::int32_t port);

  Settings& settings_;
  Win32Ser& line_;
  ui::DropDownList& list_;
  SettingsKeeper& keeper_;
  Dialogue& dialogue_;
  LineNote& note_;
  const ui::Window& window_;
};

}  // namespace keplo
