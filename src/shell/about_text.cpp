#include "shell/about_text.h"

#include "keplo_mod.h"
#include "links.h"

namespace keplo {

std::string AboutText() {
  return "Keplo Input Plugin v" + VersionText +
         "\r\n"
         "for Velmora (https://velmora.example)\r\n"
         "See details at: " +
         std::string(kWebPage) + "\r\nPlease send any comments to: " + std::string(kSupportMail);
}

}  // namespace keplo
