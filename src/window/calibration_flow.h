#pragma once

#include "config/settings.h"
#include "signal/monitored_press.h"
#include "signal/win32_ser.h"
#include "ui/label.h"
#include "ui/text_box.h"
#include "ui/timer.h"
#include "ui/window.h"
#include "window/settings_keeper.h"

namespace keplo {

/// Finds the capture delay of this machine from a key that the user holds down on a remote.
class CalibrationFlow {
 public:
  struct Controls {
    ui::TextBox& SendPulse;
    ui::Label& IRCommand;
    ui::Label& ProcDelayparameter;
    ui::Timer& SendLoop;
  };

  /// @param window shows the progress
  CalibrationFlow(Settings& settings, SignalState& signal, Win32Ser& line, const Controls& controls,
                  SettingsKeeper& keeper, Dialogue& dialogue, const ui::Window& window)
      : settings_(settings),
        signal_(signal),
        line_(line),
        controls_(controls),
        keeper_(keeper),
        dialogue_(dialogue),
        window_(window) {}

  /// Asks for the key and calibrates. Does nothing while a calibration is running.
  void Start();

 private:
  /// @return false if there was no signal, which leaves the receiver switched on
  bool Calibrate();

  Settings& settings_;
  SignalState& signal_;
  Win32Ser& line_;
  Controls controls_;
  SettingsKeeper& keeper_;
  Dialogue& dialogue_;
  const ui::Window& window_;
  bool calibrating_ = false;
};

}  // namespace keplo
