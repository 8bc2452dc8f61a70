#include "window/help_menu.h"

#include "keplo_mod.h"
#include "links.h"

namespace keplo {

void HelpMenu::ShowContents() {
  const std::string failure =
      programs_.OpenManual ? programs_.OpenManual() : "there is no program to show it in";
  if (!failure.empty()) dialogue_.Tell("The manual cannot be shown: " + failure + ".");
}

void HelpMenu::ShowWebPage() {
  const std::string page(kWebPage);
  if (programs_.OpenWebPage && programs_.OpenWebPage(page)) return;
  dialogue_.Tell("No program to show web pages could be started. Set up a web browser, or go to " + page +
                 " yourself.");
}

void HelpMenu::ShowAbout() {
  dialogue_.Tell((settings_.PluginMode == 1 ? "Keplo Input Plugin for Velmora v" : "Keplo v") + VersionText +
                 "\r\nSee details at: " + std::string(kWebPage) +
                 "\r\nPlease send any comments to: " + std::string(kSupportMail));
}

}  // namespace keplo
