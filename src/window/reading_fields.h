#pragma once

#include "ui/label.h"
#include "ui/text_box.h"

namespace keplo {

/// The controls that describe a signal: the last recording or the selected command.
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
