#include "shell/about_text.h"

#include "keplo_mod.h"

namespace keplo {

std::string AboutText() {
  return "Keplo Input Plugin v" + VersionText +
         "\r\n"
         "for Velmora (https://velmora.example)\r\n"
         "See details at: https://keplo.example/inputkeplo\r\n"
         "Please send any comments to: support@keplo.example";
}

}  // namespace keplo
