#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "config/beeps.h"
#include "config/transmission.h"
#include "keplo_mod.h"
#include "signal/raw/raw_signal.h"
#include "signal/win32_ser.h"
#include "ui/button.h"
#include "ui/check_box.h"
#include "ui/drop_down_list.h"
#include "ui/scroll_bar.h"
#include "ui/timer.h"
#include "ui/window.h"
#include "window/dialogue.h"
#include "window/line_note.h"
#include "window/reading_fields.h"
#include "window/waveform_pane.h"

namespace keplo {

/// Sends the code on screen, once or repeatedly.
class SendFlow {
 public:
  struct Controls {
    ui::Button& SendButton;
    ui::CheckBox& TestCheck;
    ui::CheckBox& VexilCheckbox;
    ui::DropDownList& Zone;
    ui::DropDownList& Protocol;
    ui::DropDownList& SendCmd;
    ui::ScrollBar& HScroll1;
    ui::Timer& Loop;
    ReadingFields Fields;
  };

  /// @param showsTrace whether the trace is visible
  /// @param window shows a notice while the user has to wait
  SendFlow(KeploMod& mod, Win32Ser& line, const Controls& controls, WaveformPane& waveform,
           std::function<bool()> showsTrace, Dialogue& dialogue, LineNote& note, const ui::Window& window)
      : mod_(mod),
        line_(line),
        beeps_(line, mod.Settings),
        controls_(controls),
        fields_(controls_.Fields),
        waveform_(waveform),
        showsTrace_(std::move(showsTrace)),
        dialogue_(dialogue),
        note_(note),
        window_(window) {}
  SendFlow(const SendFlow&) = delete;
  SendFlow& operator=(const SendFlow&) = delete;

  void Send();
  void StartLoop() { controls_.Loop.SetEnabled(true); }
  /// A tick of the loop.
  void SendAgain();

 private:
  bool UseRecordedParams();
  void ShowParams();
  bool SelectZone();
  bool SendDigits(const std::string& digits);
  void ShowRaw();
  void SendRaw(const RawSignal& signal);
  void Transmit(const Transmission& transmission);
  void ShowSent(std::string capture);

  KeploMod& mod_;
  Win32Ser& line_;
  Beeps beeps_;
  Controls controls_;
  const ReadingFields& fields_;
  WaveformPane& waveform_;
  std::function<bool()> showsTrace_;
  Dialogue& dialogue_;
  LineNote& note_;
  const ui::Window& window_;
  std::size_t rawSent_ = 0;  // number of raw commands sent
};

}  // namespace keplo
