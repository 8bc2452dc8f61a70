#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "events/col_cls_keplo_events.h"
#include "host/host_records.h"
#include "keplo_mod.h"
#include "shell/dispatch.h"
#include "shell/frm_event.h"
#include "shell/held_keys.h"
#include "shell/status_panel.h"
#include "signal/frame_times.h"
#include "signal/monitored_press.h"
#include "signal/win32_ser.h"
#include "ui/boxes.h"
#include "ui/clock.h"
#include "ui/list_view.h"
#include "ui/menu.h"
#include "ui/timer.h"

namespace keplo {

/// The result of one tick, for programs that explain to a person why a press did nothing.
struct TickReport {
  bool Captured = false;
  MonitorReading Reading;
  DispatchReport Dispatched;
  int Taps = 1;  // presses of one key that the capture holds
};

/// One of the presses of a key in a capture.
struct MonitoredTap {
  AirTime OnAir;
  std::chrono::microseconds Period{0};  // from frame to frame; 0 if there was only one
  std::optional<bool> Toggle;
  bool IsOver = false;  // another press follows
};

/// When the line was checked for a signal.
struct WatchState {
  AirTime OnAir;                             // of the last capture
  std::chrono::microseconds LookedAt{0};     // the last check
  std::chrono::microseconds PausedUntil{0};  // the first check after the last pause
  std::chrono::microseconds WatchedFrom{0};  // the same, if signals during the pause were missed
  bool LookedAway = false;                   // a capture was taken since the last check
  bool Kept = false;  // most of the last signal was on air during a pause, and the line has kept it
};

/// The windows that the control opens.
struct KeploWindows {
  ui::Boxes& Boxes;
  EventDialogShower& EventDialog;
  /// Shows the configuration window modally; empty if there is no window.
  std::function<void()> OpenMainWindow = {};
  bool HasDisplay = true;  // if not, the windows do nothing
  /// Runs if the port did not open at the first attempt.
  std::function<void()> PortRefused = {};
};

/// The control that the host creates: monitors the line, holds the event list and raises input events. It
/// runs on the thread of its owner, who calls Timer1.Tick.
class Keplo {
 public:
  /// Loads keplo.cfg, reads the settings, opens the port in up to five attempts and fills the panel. If the
  /// settings are incomplete, the port stays closed and the panel keeps its initial texts.
  /// @throws Failure if keplo.cfg cannot be read
  Keplo(KeploMod& mod, Win32Ser& line, const KeploWindows& windows, const ui::Clock& clock);
  Keplo(const Keplo&) = delete;
  Keplo& operator=(const Keplo&) = delete;

  /// Loads the event map into the collection and the list.
  /// @param velmora the host object; kept until InputTerminate
  /// @return 1 if the event map was loaded, otherwise 0
  std::int32_t InputInitialise(std::shared_ptr<void> velmora);
  /// Why InputInitialise returned 0, for the user.
  std::string InitialiseFailure() const;
  std::int32_t InputStartMonitoring();
  std::int32_t InputStopMonitoring();
  bool InputMonitoring() const { return Monitoring; }
  std::int32_t InputTerminate();

  /// Lets the user bind a new event, with an EventID from the host, to a command.
  /// @return 1 with name, description and command stored in the host's object, 0 for a failure, 2 if the user
  ///         cancelled
  std::int32_t InputAddEvent(HostInputEvent& objInputEvent);
  /// Lets the user edit the event with the host's EventID; returns the same as InputAddEvent.
  std::int32_t InputModifyEvent(HostInputEvent& objInputEvent);
  /// @return 1 if the event was deleted from list, collection and table; 0 if it is not in the list or the
  ///         database cannot be reached
  std::int32_t InputDeleteEvent(const HostInputEvent& objInputEvent);
  /// The EventIDs of all events in list order; a single empty text if the list is empty.
  /// @return 1
  std::int32_t InputHouseKeepingGetEventIDs(std::vector<std::string>& eventIDs) const;
  std::string InputIconFileName() const;
  void InputDisplayAboutBox();
  /// The only item of the plug-in's menu.
  /// @return 1
  std::int32_t InputGetPluginMenuItems(std::vector<std::string>& mnuItems) const;
  std::int32_t InputGetPluginVersion(std::string& szVersion) const;
  std::int32_t InputGetHTMLPage(std::string& szHTML) const;
  std::int32_t InputPostHTMLPage(std::string& szHTML) const;
  /// Updates list, pages, panel and port to what other programs have written to the event map and to
  /// keplo.cfg. The owner calls this from time to time between ticks; it costs next to nothing if nothing has
  /// changed. Does nothing inside a tick and while the configuration window is open.
  void ApplyExternalChanges();
  /// Whether a change of the event map could not be taken in yet, for example because of another program's
  /// lock.
  bool NeedsAnotherCheck() const;
  /// Whether an event was removed from the list although its row could not be deleted; ApplyExternalChanges
  /// restores it.
  bool ListDiffersFromMap() const { return listDiffersFromMap_; }
  /// The highest numeric EventID of a deleted event; 0 if there is none.
  /// @throws Failure if the event map cannot be read
  std::int64_t HighestUsedUpEventID();

  /// Opens the configuration window for menu item 0; any other item only restores the resting lines.
  /// @return true
  bool InputCallMenuItem(std::int16_t index);
  /// Opens the configuration window.
  /// @return 1
  std::int32_t InputConfigurePlugin();

  /// The record of the last failure; empty after InputInitialise, none after InputTerminate.
  std::shared_ptr<HostErrorRecord> InputErrorDetails() const { return ErrorDetails; }

  /// Fits the frame and the list into the control.
  /// @param width, height the control's size, twips
  void Resize(int width, int height);

  /// @param button the mouse button pressed on the event list; 2 is the right one
  void ListView1_MouseDown(int button);
  void EnableMenu_Click() { SwitchSelectedEvent(true); }
  void DisableMenu_Click() { SwitchSelectedEvent(false); }
  void HelpMenu_Click();

  /// Reports a failure to the host and keeps its record for InputErrorDetails. A failure of the host's
  /// handler is ignored.
  /// @return 0
  std::int32_t ReportFailure(std::string_view procedure, const std::exception& failure) noexcept;

  /// The host's handlers, called synchronously.
  std::function<void(HostInputEvent&)> TriggerInputEvent;
  std::function<void(HostErrorRecord&, bool& blnStopping)> TriggerInputErrorCondition;

  /// A key was pressed, is still held, or was released. Each capture with a code, learned or not, causes one
  /// of the first two before its input events, or both if it contains two taps.
  std::function<void(KeyChange, const KeyPress&)> OnKey;
  /// The time on the line: that of the machine, except for a line that plays at its own pace.
  std::function<std::chrono::microseconds()> LineTime;
  /// How long ticks may be skipped without noticing a release late; none while no key is held.
  std::optional<std::chrono::microseconds> TimeToRelease() const;

  StatusPanel Panel;
  ui::ListView ListView1;
  ui::Timer Timer1{2};
  ui::PopupMenu RightClickMenu;
  int FrameWidth = 0, FrameHeight = 0;  // twips; the frame is at left 0, top 0

  const TickReport& LastTick() const { return lastTick_; }
  /// Whether the last capture contains nothing but NEC's dittos, which have no code.
  bool HasOnlyDittos();
  /// Runs after each attempt to open the port except that of the constructor.
  std::function<void()> OnPortOpened;
  /// Runs after a tick that took a capture, for programs that report the outcome to a person.
  std::function<void(const TickReport&)> OnPress;
  /// Whether a capture may beep if the user has enabled beeps; empty means always.
  std::function<bool()> MayBeep;
  /// Runs once for each signal received, with or without a code, before the pause after its first event.
  std::function<void(const TickReport&)> OnHeard;

 private:
  void OpenPort();
  void ReloadConfiguration();
  void ReloadSettings(const Settings& settings);
  void RefreshStatusPanel();
  void SetRestingLines();
  void ShowInterface();
  void Timer1_Timer();
  void Tick();
  template <typename Action>
  void RunAndReport(Action action);
  void RaiseInputEvent(HostInputEvent& event);
  bool LineIsAtRest();
  void Capture();
  void ReadAndDispatch();
  bool ReadAsDitto(MonitorReading& reading);
  void ReadAsHeldPair(MonitorReading& reading);
  void ReadAsHeldRawKey(MonitorReading& reading);
  std::vector<MonitoredTap> TapsOf(const MonitorReading& reading);
  std::size_t SecondTapIn(std::span<const TimedPiece> pieces, const MonitorReading& reading);
  void HearCode(const MonitorReading& reading, const MonitoredTap& tap);
  void HandleCode(const MonitorReading& reading);
  bool WasHeldDuringPause();
  void Dispatch(const MonitorReading& reading);
  void NoteCheck();
  void TimeCapture(std::chrono::microseconds begin);
  void ReleaseDueKeys();
  void ReportHeard();
  void ReportReleased(const std::vector<KeyPress>& ended);
  /// The key at the receiver of the last capture.
  HeldKey& Key() { return keys_.Of(watch_.OnAir.Place); }
  void ReportKey(KeyChange change, const KeyPress& key);
  void OpenMainWindow();
  void SetTimer();
  void SaveConfiguration();
  void RaiseError(HostErrorRecord& record) const;
  void SwitchSelectedEvent(bool enabled);

  KeploMod& mod_;
  Win32Ser& line_;
  KeploWindows windows_;
  const ui::Clock& clock_;

  colclsKeploEvents m_EventCollection;
  std::shared_ptr<HostErrorRecord> ErrorDetails;
  std::shared_ptr<void> HostObject;
  bool Monitoring = false;
  bool inTick_ = false;
  bool terminated_ = false;
  bool initialised_ = false;
  bool windowOpen_ = false;
  bool triedPort_ = false;  // OpenPort has run
  bool listDiffersFromMap_ = false;
  std::string reportedConfigurationFailure_;
  TickReport lastTick_;
  HeldKeys keys_;
  WatchState watch_;
  bool heardReported_ = false;  // OnHeard has run for the last capture
};

}  // namespace keplo
