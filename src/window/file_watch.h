#pragma once

#include <string>

#include "config/settings.h"
#include "keplo_mod.h"
#include "ui/label.h"
#include "ui/timer.h"

namespace keplo {

class CommandList;
class Dialogue;
class Options;
class PortList;
class ProtocolPlace;

/// Takes in what other programs have written to the file. To be called before a change of the text is
/// planned.
/// @return why it could not be taken in, for a person; empty if it could, or if there was nothing
std::string TakeInOtherText(CfgStore& store);

/// Keeps the window with its file: what another program writes there is taken in while the user does nothing
/// that it could get in the way of, and lists and settings follow.
class FileWatch {
 public:
  /// What shows the file.
  struct Shown {
    CommandList& Commands;
    keplo::Options& Options;
    PortList& Ports;
    const ProtocolPlace& Protocols;
    ui::Label& Note;  // tells what cannot be taken in
  };

  FileWatch(KeploMod& mod, ui::Timer& timer, const Shown& shown, const Dialogue& dialogue)
      : mod_(mod), timer_(timer), shown_(shown), dialogue_(dialogue) {}

  /// To be called when all is shown as the file has it.
  void Start();
  void Stop() { timer_.SetEnabled(false); }
  /// A tick of the timer.
  void Look();

 private:
  void TakeSettings();

  KeploMod& mod_;
  ui::Timer& timer_;
  Shown shown_;
  const Dialogue& dialogue_;
  Settings inFile_;  // when the file was looked at last
};

}  // namespace keplo
