#pragma once

#include <functional>
#include <string>

#include "config/settings.h"
#include "window/dialogue.h"

namespace keplo {

/// Shows something in another program of the user's.
struct HelpPrograms {
  /// @return why the manual is not shown; empty if it is
  std::function<std::string()> OpenManual;
  /// @return false if no program could be started
  std::function<bool(const std::string& address)> OpenWebPage;
};

/// Manual, web page and what the program is.
class HelpMenu {
 public:
  /// @param programs may change until they are called
  HelpMenu(const Settings& settings, const HelpPrograms& programs, Dialogue& dialogue)
      : settings_(settings), programs_(programs), dialogue_(dialogue) {}

  void ShowContents();
  void ShowWebPage();
  void ShowUpdates() { dialogue_.Tell("Not yet implemented"); }
  void ShowAbout();

 private:
  const Settings& settings_;
  const HelpPrograms& programs_;
  Dialogue& dialogue_;
};

}  // namespace keplo
