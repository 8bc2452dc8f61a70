#pragma once

#include <functional>
#include <string>

#include "config/settings.h"
#include "window/dialogue.h"

namespace keplo {

/// How to show the manual and web pages in other programs.
struct HelpPrograms {
  /// @return why the manual cannot be shown; empty on success
  std::function<std::string()> OpenManual;
  /// @return false if no program could be started
  std::function<bool(const std::string& address)> OpenWebPage;
};

/// The Help menu: manual, web page and about box.
class HelpMenu {
 public:
  /// @param programs may be set later
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
