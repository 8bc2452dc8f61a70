#pragma once

#include "ui/label.h"
#include "ui/text_box.h"

namespace keplo {

/// The controls that explain a signal to the user: the last recording, or the command at hand.
struct ReadingFields {
  ui::TextBox& CodeStr;
  ui::TextBox& SendPulse;
  ui::Label& IRCommand;
  ui::Label& BitNr;
  ui::Label& GType;
  ui::Label& Rpt;
  ui::Label& GProt;
  ui::Label& plen1;
  ui::Label& plen0;
  ui::Label& AddrVal;
  ui::Label& CmdVal;
  ui::Label& ToggleVal;
  ui::Label& Frame1;
  ui::Label& ZoneNr;
};

}  // namespace keplo
