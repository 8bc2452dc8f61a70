#pragma once

#include <functional>

#include "signal/validation.h"
#include "window/calibration_flow.h"
#include "window/command_list.h"
#include "window/dialogue.h"
#include "window/file_watch.h"
#include "window/help_menu.h"
#include "window/line_note.h"
#include "window/options.h"
#include "window/port_list.h"
#include "window/protocol_flow.h"
#include "window/record_flow.h"
#include "window/recording_flow.h"
#include "window/remotes_flow.h"
#include "window/send_flow.h"
#include "window/settings_keeper.h"
#include "window/undo_step.h"
#include "window/waveform_pane.h"

namespace keplo {

class Form1;

/// What can be done in the main window: one object per activity, working on the window's controls.
struct Flows {
  Flows(Form1& form, KeploMod& mod, Win32Ser& line, ui::Boxes& boxes);

  keplo::Dialogue Dialogue;
  UndoHistory Undo;
  LineNote Note;
  SettingsKeeper Settings;
  keplo::Options Options;
  PortList Ports;
  keplo::Validation Validation;
  WaveformPane Waveform;
  CommandList Commands;
  RecordFlow Record;
  RecordingFlow Recordings;
  RemotesFlow Remotes;
  SendFlow Send;
  CalibrationFlow Calibration;
  ProtocolFlow Protocols;
  FileWatch File;
  HelpMenu Help;
};

}  // namespace keplo
