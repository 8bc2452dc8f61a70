#include <string>

#include "keplo_mod.h"
#include "maker.h"
#include "window/form1.h"

namespace keplo {

void Form1::HelpContentMenu_Click() {
  const std::string failure = OpenManual ? OpenManual() : "there is no program to show it in";
  if (!failure.empty()) Tell("The manual cannot be shown: " + failure + ".");
}

void Form1::WebPageMenu_Click() {
  const std::string page(kWebPage);
  if (OpenWebPage && OpenWebPage(page)) return;
  Tell("No program to show web pages could be started. Set up a web browser, or go to " + page +
       " yourself.");
}

void Form1::UpdateMenu_Click() { Tell("Not yet implemented"); }

void Form1::AboutMenu_Click() {
  Tell((ByShell() ? "Keplo Input Plugin for Velmora v" : "Keplo v") + VersionText + "\r\nSee details at: " +
       std::string(kWebPage) + "\r\nPlease send any comments to: " + std::string(kSupportMail));
}

}  // namespace keplo
