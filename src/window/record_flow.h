#pragma once

#include <cstdint>
#include <string>

#include "config/beeps.h"
#include "config/lookup.h"
#include "keplo_mod.h"
#include "signal/raw/raw_lesson.h"
#include "signal/recorded_press.h"
#include "signal/validation.h"
#include "signal/win32_ser.h"
#include "ui/button.h"
#include "ui/check_box.h"
#include "ui/drop_down_list.h"
#include "ui/timer.h"
#include "ui/window.h"
#include "window/line_note.h"
#include "window/reading_fields.h"
#include "window/recording_files.h"
#include "window/waveform_pane.h"

namespace keplo {

/// Records and explains key presses.
class RecordFlow {
 public:
  struct Controls {
    ui::Button& RecButton;
    ui::CheckBox& VexilCheckbox;
    ui::DropDownList& Protocol;
    ui::DropDownList& SendCmd;
    ui::Timer& SendLoop;
    ReadingFields Fields;
  };

  /// @param window shows a notice while the user has to wait
  RecordFlow(KeploMod& mod, Win32Ser& line, const Controls& controls, WaveformPane& waveform,
             Validation& validation, LineNote& note, const ui::Window& window)
      : mod_(mod),
        line_(line),
        beeps_(line, mod.Settings),
        controls_(controls),
        fields_(controls_.Fields),
        waveform_(waveform),
        validation_(validation),
        note_(note),
        window_(window) {}
  RecordFlow(const RecordFlow&) = delete;
  RecordFlow& operator=(const RecordFlow&) = delete;

  /// Waits for a key press and explains it.
  void Record();
  /// Explains a recording from a file.
  /// @return a remark for the user; may be empty
  std::string Explain(const OpenedRecording& recording);

 private:
  void ClearReading();
  void ReadCapture();
  bool ReceiveSignal();
  void ShowReceivedZone();
  void ShowReading(const RecordReading& reading);
  bool ShowRaw(const RecordReading& reading);
  Verdict LearnRaw(RawSignal& signal);
  void ShowRawSignal(const RawSignal& signal, Verdict verdict, const FoundCommand& known);
  void ShowVerdict(Verdict verdict);
  void ShowKind(std::int16_t kind);
  bool LookUp(const RecordReading& reading);
  void ShowCode(const RecordReading& reading);
  void SelectCurrent();

  KeploMod& mod_;
  Win32Ser& line_;
  Beeps beeps_;
  Controls controls_;
  const ReadingFields& fields_;
  WaveformPane& waveform_;
  Validation& validation_;
  LineNote& note_;
  const ui::Window& window_;
  std::string remark_;   // about the last signal, for the user
  std::string place_;    // OpenedRecording::Place of the recording that is shown; empty for a key press
  RawLesson rawLesson_;  // the presses that no analysis could read
};

}  // namespace keplo
