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

/// The main window: it picks protocols and commands, records and explains key presses, stores them and sends
/// them. It keeps no settings of its own: it works on the module state and on the one configuration text.
///
/// The handlers are named as control and event. Each runs at once when its control really changes, from the
/// user or from code; what is done stands in the flows.
class Form1 : public ui::Window {
 public:
  /// @param line the receiver and transmitter that the settings name
  Form1(KeploMod& mod, Win32Ser& line, ui::Boxes& boxes);
  /// A window that goes without a Form_Unload has it here.
  ~Form1() override;
  Form1(const Form1&) = delete;
  Form1& operator=(const Form1&) = delete;

  /// Brings the window up; it is to be shown only after a true. By itself the window reads file and settings;
  /// opened by the shell it works on what is loaded.
  /// @return false, after a message, if the configuration cannot be used
  bool Form_Load();
  /// What is wrong with a configuration that cannot be used, for a person; empty if nothing is.
  const std::string& WhyNotLoaded() const { return whyNotLoaded_; }
  /// Ends the window's work, however it left the screen: saves, and closes the port of a window by itself. A
  /// second call does nothing, nor does one without a Form_Load that was true.
  void Form_Unload();

  /// Tries the ports 1 to 30 and lists those that open; the configured one is selected and ends up open.
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

  /// The protocol dialog; null while there is none. As long as it is there, it stands in the place of this
  /// window, which is hidden and cannot be used.
  NewProtocol* ProtocolDialog() const;
  /// Runs when the protocol dialog has come or gone; a view puts the one in the place of the other.
  std::function<void()> OnProtocolDialog;

  /// True at the full size.
  bool WindowLarge() const { return windowLarge_; }
  /// Outer size, twips.
  Size OuterSize() const { return windowLarge_ ? kFullOuter : kSmallOuter; }
  /// Runs when the window has become small or large; a view takes the new size over.
  std::function<void()> OnResize;
  /// A view says here how manual and web pages are shown.
  HelpPrograms Programs;
  /// A view says here how the user picks a file.
  RecordingFiles Recordings;
  /// A view says here how the user picks files of remotes, and keys of them.
  RemoteFiles Remotes;
  /// Whoever has made the line tells here what it is, in a sentence for a person.
  std::function<std::string()> DescribeLine;
  /// What the line is and what has become of it, or of the file; a view shows it where the trace stands.
  ui::Label Note;

  /// What can be read off the trace, and how it stands: the place of a sample, and a sample at a place, in
  /// pixels of the design from the left edge of the surface.
  WaveReading Wave;
  /// T of what the trace shows, microseconds; 0 if it is not known.
  std::int32_t Pulse() const;
  double WavePlace(double sample) const;
  double WaveSample(double place) const;
  /// Where the trace comes out of the left margin, see WaveformPane, and where it ends.
  std::optional<ui::DrawingSurface::Point> WaveEntry() const;
  double WaveEnd() const;
  /// Stretches the trace by a factor; what stands at a place stays there.
  void ZoomWave(double place, double factor);
  /// Slides the trace to the right, in samples.
  void SlideWave(int samples);
  /// Shows the whole trace.
  void FitWave();

  /// Where the trace is drawn: the inside of the window at its full size, in pixels of the design. It lies on
  /// the Signal box, and only that part of it ever carries anything.
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
  ui::Label IRCommand;  // a doubled & shows as one
  ui::Label ZoneNr, BitNr, GType, Rpt, GProt;
  ui::Label plen1, plen0;
  ui::Label Signal;
  ui::Control Line1;

  ui::MenuEntry FileNewMenu, EditMenu, ProtoDeleteMenu, UndoMenu, OpenRecordingMenu, SaveRecordingMenu;
  ui::MenuEntry ImportMenu, ExportMenu;
  ui::MenuEntry CalibrationMenu, MenuProcDelay, FileExit;
  ui::MenuEntry StdDcdMenu, IRMouseMenu;
  ui::MenuEntry HelpContentMenu, WebPageMenu, UpdateMenu, AboutMenu;

  ui::Timer Timer1{1000};    // drives the repeated sending
  ui::Timer FileTimer{400};  // looks for changes of the file by other programs

 private:
  void ShowDesign();
  void BindHandlers();
  bool ByShell() const;
  void ShowMode();
  bool Load();
  bool LoadFile();
  bool NotLoaded();

  KeploMod& mod_;
  Win32Ser& line_;
  std::unique_ptr<Flows> flows_;
  bool windowLarge_ = true;
  bool loaded_ = false;
  std::string whyNotLoaded_;
};

}  // namespace keplo
