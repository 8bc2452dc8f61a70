#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "config/store_undo.h"
#include "keplo_mod.h"
#include "signal/recorded_press.h"
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
#include "window/layout.h"
#include "window/validation.h"
#include "window/wave_reading.h"

namespace keplo {

class NewProtocol;

/// The last entry of the protocol list: no section, but the place of the key press recorded last.
inline constexpr std::string_view kRecorded = "Recorded";

/// Title of the boxes that have none of their own.
inline constexpr std::string_view kBoxTitle = "Keplo";

/// The main window: it picks protocols and commands, records and explains key presses, stores them and sends
/// them. It keeps no settings of its own: it works on the module state and on the one configuration text.
///
/// The handlers are named as control and event. Each runs at once when its control really changes, from the
/// user or from code.
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
  /// Takes the last change of commands or protocols back, file and lists.
  void UndoMenu_Click();
  void OpenRecordingMenu_Click();
  void SaveRecordingMenu_Click();
  void HelpContentMenu_Click();
  void WebPageMenu_Click();
  void UpdateMenu_Click();
  void AboutMenu_Click();

  /// The protocol dialog; null while there is none. As long as it is there, it stands in the place of this
  /// window, which is hidden and cannot be used.
  NewProtocol* ProtocolDialog() const { return newProtocol_.get(); }
  /// Ends the protocol dialog and brings this window back. The object lives on until the next one is loaded,
  /// so a handler of its own may end it.
  void UnloadProtocolDialog();
  /// Selects a protocol and runs Protocol_Click even if it is selected already.
  void MakeProtocolCurrent(int index);
  /// Makes the selected protocol the current one again with its parameters and commands; a recorded code that
  /// is to be stored yet stays on screen.
  void TakeSelectedProtocol();
  /// Runs a change of the configuration and tells the user what failed.
  /// @return true if nothing did
  bool Told(const std::function<void()>& action);
  /// Runs when the protocol dialog has come or gone; a view puts the one in the place of the other.
  std::function<void()> OnProtocolDialog;

  /// True at the full size.
  bool WindowLarge() const { return windowLarge_; }
  /// Outer size, twips.
  Size OuterSize() const { return windowLarge_ ? kFullOuter : kSmallOuter; }
  /// Runs when the window has become small or large; a view takes the new size over.
  std::function<void()> OnResize;
  /// Show the manual, and a page of the web, in a program of the user's.
  /// @return false if none could be started; of the manual also the reason, empty if it is shown
  std::function<std::string()> OpenManual;
  std::function<bool(const std::string& address)> OpenWebPage;
  /// Ask the user for a file and read a capture from it, or write one to it; none without an answer.
  /// @throws Failure for a file that cannot be read or written
  std::function<std::optional<std::string>()> ReadRecording;
  std::function<void(const std::string& capture)> WriteRecording;

  /// What can be taken back.
  StoreUndo Undo;

  /// What can be read off the trace, and how it stands: the place of a sample, and a sample at a place, in
  /// pixels of the design from the left edge of the surface.
  WaveReading Wave;
  double WavePlace(double sample) const;
  double WaveSample(double place) const;
  /// Stretches the trace by a factor; what stands at a place stays there.
  void ZoomWave(double place, double factor);
  /// Slides the trace to the right, in samples.
  void SlideWave(int samples) { HScroll1.SetValue(HScroll1.Value() + samples); }
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
  ui::MenuEntry CalibrationMenu, MenuProcDelay, FileExit;
  ui::MenuEntry StdDcdMenu, IRMouseMenu;
  ui::MenuEntry HelpContentMenu, WebPageMenu, UpdateMenu, AboutMenu;

  ui::Timer Timer1{1000};  // drives the repeated sending

 private:
  void ShowDesign();
  void BindHandlers();
  void Beep(std::int32_t frequency, std::int32_t duration);
  void Tell(std::string_view text);
  bool Ask(std::string_view text);
  void TellFailure(const std::string& text);

  bool ByShell() const;
  void ShowMode();
  bool Load();
  bool LoadFile();
  bool NotLoaded();
  void TakeUnsavedSettings();
  void ShowInterfaceType();
  void ShowZoneHardware();
  void ListProtocolsWithRecorded();
  void ProbePorts();
  bool PortOpens(std::int32_t port);

  static std::int32_t OutputOf(std::int32_t interfaceType);
  void KeepSetting(const std::string& key, std::int32_t value);
  void KeepSettingAndSave(const std::string& key, std::int32_t value);
  void Keep(const std::string& key, std::int32_t value, const std::function<void()>& otherwise);
  void KeepInterfaceType(std::int32_t interfaceType);
  void ShowReceiver();
  void GiveTheLineToZones();

  bool RecordedSelected() const;
  void ColourLists(ui::Colour colour);
  void ShowRecorded();
  bool KeepProtocolIndex();
  bool LoadParams();
  void ReloadCommands();
  std::optional<std::string> AskName();
  bool ChangeCommands(const std::function<void()>& change);
  void ShowSaved(const std::string& name);

  void ClearReading();
  bool ReceiveSignal();
  void ExplainCapture();
  void ShowReceivedZone();
  void ShowReading(const RecordReading& reading);
  void ShowKind(std::int16_t kind);
  bool LookUp(const RecordReading& reading);
  void ShowCode(const RecordReading& reading);
  void SelectCurrent();

  void LoadProtocolDialog(std::int16_t mode);

  bool TakeRecordedParams();
  void ShowParams();
  bool SelectZone();
  bool Send(std::string digits);

  /// @return false if it ended for want of a signal, which leaves the receiver switched on
  bool Calibrate();

  /// Draws a capture onto the surface.
  /// @param offset of its first sample, samples
  /// @return its samples, all of them, wherever they stand
  std::string DrawWave(std::string_view capture, int offset);
  void Redraw();
  void StartTrace();
  bool CanZoom() const;
  void ZoomTo(double zoom);
  void ShowWaveAt(double sample, double place, double zoom);

  KeploMod& mod_;
  Win32Ser& line_;
  ui::Boxes& boxes_;
  Validation validation_;
  double waveZoom_ = 1;  // pixels a sample
  int waveOffset_ = 15;  // samples; the place of the first sample
  bool windowLarge_ = true;
  bool loaded_ = false;
  bool sendsAgain_ = false;  // once the protocol dialog is gone
  std::unique_ptr<NewProtocol> newProtocol_, unloadedDialog_;
  bool calibrating_ = false;
  std::string whyNotLoaded_;
  std::optional<std::string> failuresWhileLoading_;  // told in one box when the window has come up
  std::map<std::string, std::int32_t> unsaved_;      // settings whose save failed; the last save tries again
};

}  // namespace keplo
