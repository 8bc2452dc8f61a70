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
class ProtocolFlow;

/// Reloads the file if another program has written it. Call this before planning a change of the text.
/// @return why it could not be reloaded, for the user; empty on success
std::string ReloadIfChanged(CfgStore& store);

/// Keeps the window in step with its file: reloads it when another program has written it, unless that could
/// interfere with what the user is doing, and updates lists and settings.
class FileWatch {
 public:
  /// The parts of the window that show the contents of the file.
  struct Shown {
    CommandList& Commands;
    keplo::Options& Options;
    PortList& Ports;
    const ProtocolFlow& Protocols;
    ui::Label& Note;  // shows why the file cannot be reloaded
  };

  FileWatch(KeploMod& mod, ui::Timer& timer, const Shown& shown, const Dialogue& dialogue)
      : mod_(mod), timer_(timer), shown_(shown), dialogue_(dialogue) {}

  /// Call this once the window shows the contents of the file.
  void Start();
  void Stop() { timer_.SetEnabled(false); }
  /// A tick of the timer.
  void Check();

 private:
  void ApplySettings();

  KeploMod& mod_;
  ui::Timer& timer_;
  Shown shown_;
  const Dialogue& dialogue_;
  Settings inFile_;  // the settings in the file at the last check
};

}  // namespace keplo
