#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "signal/win32_ser.h"
#include "ui/boxes.h"
#include "ui/button.h"
#include "ui/check_box.h"
#include "ui/control.h"
#include "ui/drawing_surface.h"
#include "ui/drop_down_list.h"
#include "ui/label.h"
#include "ui/menu_entry.h"
#include "ui/scroll_bar.h"
#include "ui/text_box.h"
#include "ui/timer.h"
#include "ui/window.h"
#include "window/help_menu.h"
#include "window/layout.h"
#include "window/recording_files.h"
#include "window/remote_files.h"
#include "window/wave_reading.h"

namespace keplo {

struct Flows;
struct KeploMod;
class NewProtocol;

/// The main window, in which the user selects protocols and commands, and records, explains, stores and sends
/// key presses. It has no settings of its own, but works on the module state and the configuration text.
///
/// Handlers are named after control and event. They run whenever the control changes, whether by the user or
/// by code. The flows do the actual work.
class Form1 : public ui::Window {
 public:
  /// @param line the receiver and transmitter specified by the settings
  Form1(KeploMod& mod, Win32Ser& line, ui::Boxes& boxes);
  /// Calls Form_Unload.
  ~Form1() override;
  Form1(const Form1&) = delete;
  Form1& operator=(const Form1&) = delete;

  /// Initialises the window, which must not be shown if this fails. A standalone window loads file and
  /// settings; one opened by the shell uses what is already loaded.
  /// @return false, after a message, if the configuration cannot be used
  bool Form_Load();
  /// Why the configuration cannot be used, for the user; empty if it can.
  const std::string& LoadFailure() const { return loadFailure_; }
  /// Saves the configuration and, if the window is standalone, closes the port. Does nothing if called twice,
  /// or if Form_Load failed.
  void Form_Unload();

  /// Tries the ports 1 to 30 and lists those that open. The configured one is selected and opened.
  void ListAvailableCOM();

  void Protocol_Click();
  void SendCmd_Click();
  void SaveCmdButton_Click();
  void DeleteCmdButton_Click();
  void RecButton_Click();
  void SendButton_Click();
  void TestCheck_Click();
  void Timer1_Timer();
  void FileTimer_Timer();
  void HScroll1_Change();
  void GReset_Click();
  void Gshr_Click();
  void GExt_Click();
  void MinButton_Click();
  void OKButton_Click();
  void FileExit_Click();
  void ComList_Click();
  void StdDcdMenu_Click();
  void IRMouseMenu_Click();
  void TxDCheckBox_Click();
  void BeepCheckbox_Click();
  void VexilCheckbox_Click();
  void Zone_Click();
  void MenuProcDelay_Click();
  void CalibrationMenu_Click();
  void FileNewMenu_Click();
  void EditMenu_Click();
  void ProtoDeleteMenu_Click();
  void UndoMenu_Click();
  void OpenRecordingMenu_Click();
  void SaveRecordingMenu_Click();
  void ImportMenu_Click();
  void ExportMenu_Click();
  void HelpContentMenu_Click();
  void WebPageMenu_Click();
  void UpdateMenu_Click();
  void AboutMenu_Click();

  /// The protocol dialog; null if it is not open. While it is, it replaces this window, which is hidden.
  NewProtocol* ProtocolDialog() const;
  /// Runs when the protocol dialog has been opened or closed; a view then shows the right window.
  std::function<void()> OnProtocolDialog;

  /// Whether the window has its full size.
  bool WindowLarge() const { return windowLarge_; }
  /// Outer size, twips.
  Size OuterSize() const { return windowLarge_ ? kFullOuter : kSmallOuter; }
  /// Runs when the size has changed.
  std::function<void()> OnResize;
  /// Set by a view: how manual and web pages are shown.
  HelpPrograms Programs;
  /// Set by a view: how the user picks a recording.
  RecordingFiles Recordings;
  /// Set by a view: how the user picks files of remotes, and keys from them.
  RemoteFiles Remotes;
  /// Set by whoever created the line: describes it in a sentence for the user.
  std::function<std::string()> DescribeLine;
  /// Describes the state of the line or the file; a view shows it over the trace.
  ui::Label Note;

  /// Pointer, cursors and measurements of the trace. Places are in design pixels from the left edge of the
  /// surface.
  WaveReading Wave;
  /// T of the shown signal, microseconds; 0 if unknown.
  std::int32_t Pulse() const;
  double WavePlace(double sample) const;
  double WaveSample(double place) const;
  /// Where the trace enters at the left margin, see WaveformPane, and where it ends.
  std::optional<ui::DrawingSurface::Point> WaveEntry() const;
  double WaveEnd() const;
  /// Stretches the trace by a factor around a fixed place.
  void ZoomWave(double place, double factor);
  /// Moves the trace to the right, in samples.
  void SlideWave(int samples);
  /// Shows the whole trace.
  void FitWave();

  /// Where the trace is drawn: the inside of the full-size window, in design pixels. Only the part over the
  /// Signal box is used.
  ui::DrawingSurface Surface{kFullInner.Width / kTwipsPerPixel, kFullInner.Height / kTwipsPerPixel};

  ui::Button SendButton, MinButton, OKButton, SaveCmdButton, DeleteCmdButton, RecButton;
  ui::Button GReset, Gshr, GExt;
  ui::CheckBox BeepCheckbox, VexilCheckbox, TestCheck, TxDCheckBox;
  ui::DropDownList Protocol, SendCmd, Zone, ComList;
  ui::TextBox SendPulse, CodeStr;
  ui::ScrollBar HScroll1;
  ui::Label Label2, Label3, Label4, Label5, Label6, Label7, Label8;
  ui::Label Frame1, AddrVal, CmdVal, ToggleVal;
  ui::Label ProcDelayparameter, ReceiverType;
  ui::Label IRCommand;  // && is shown as a single &
  ui::Label ZoneNr, BitNr, GType, Rpt, GProt;
  ui::Label plen1, plen0;
  ui::Label Signal;
  ui::Control Line1;

  ui::MenuEntry FileNewMenu, EditMenu, ProtoDeleteMenu, UndoMenu, OpenRecordingMenu, SaveRecordingMenu;
  ui::MenuEntry ImportMenu, ExportMenu;
  ui::MenuEntry CalibrationMenu, MenuProcDelay, FileExit;
  ui::MenuEntry StdDcdMenu, IRMouseMenu;
  ui::MenuEntry HelpContentMenu, WebPageMenu, UpdateMenu, AboutMenu;

  ui::Timer Timer1{1000};    // repeats sending
  ui::Timer FileTimer{400};  // checks whether other programs have changed the file

 private:
  void ShowDesign();
  void BindHandlers();
  bool IsOpenedByHost() const;
  void ShowMode();
  bool Load();
  bool LoadFile();
  bool FailToLoad();

  KeploMod& mod_;
  Win32Ser& line_;
  std::unique_ptr<Flows> flows_;
  bool windowLarge_ = true;
  bool loaded_ = false;
  std::string loadFailure_;
};

}  // namespace keplo
