#pragma once

#include <cstdint>

#include "config/settings.h"
#include "signal/win32_ser.h"
#include "ui/drop_down_list.h"
#include "ui/window.h"
#include "window/line_note.h"
#include "window/settings_keeper.h"

namespace keplo {

/// The serial ports that the user can choose from.
class PortList {
 public:
  /// @param window shows what the user has to wait for
  PortList(Settings& settings, Win32Ser& line, ui::DropDownList& list, SettingsKeeper& keeper,
           Dialogue& dialogue, LineNote& note, const ui::Window& window)
      : settings_(settings),
        line_(line),
        list_(list),
        keeper_(keeper),
        dialogue_(dialogue),
        note_(note),
        window_(window) {}

  /// Tries the ports 1 to 30 and lists those that open; the configured one is selected and ends up open.
  void Fill();
  /// Picks a port; one that is not in the list leaves the choice as it is.
  void Choose(std::int32_t port);
  /// Opens the port that was picked.
  void TakePort();

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
