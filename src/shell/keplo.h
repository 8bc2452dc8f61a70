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

/// What one tick met, for programs that tell a person why a press did nothing. The monitor itself says
/// nothing.
struct TickReport {
  bool Captured = false;
  MonitorReading Reading;
  DispatchReport Dispatched;
};

/// A press of a key within a capture, which may hold another one.
struct MonitoredTap {
  AirTime OnAir;
  std::chrono::microseconds Period{0};  // from frame to frame; 0 if only one was heard
  std::optional<bool> Toggle;
  bool IsOver = false;  // another one follows
};

/// When the line was looked at.
struct LineWatch {
  AirTime OnAir;                             // of the last capture
  std::chrono::microseconds LookedAt{0};     // last
  std::chrono::microseconds PausedUntil{0};  // again after a pause
  std::chrono::microseconds WatchedFrom{0};  // the same of a line that has missed what came in the pause
  bool LookedAway = false;                   // a capture was taken since
  bool Kept = false;  // most of the last signal was on air in a pause, for which the line has kept it
};

/// What the control shows beside its own display.
struct KeploWindows {
  ui::Boxes& Boxes;
  EventDialogShower& EventDialog;
  /// Shows the configuration window modally; none where there is no window to show.
  std::function<void()> OpenMainWindow = {};
  bool HasDisplay = true;  // without one no window is shown, and nothing can have been configured
  /// Runs when the port did not open at once, before it is tried again.
  std::function<void()> PortRefused = {};
};

/// The control that the host creates: monitors the line, holds the event list, raises the input events.
/// Everything runs on the one thread of its owner, who calls Timer1.Tick.
class Keplo {
 public:
  /// Start-up: loads keplo.cfg, reads the settings, opens the port in up to five attempts, fills the panel.
  /// Settings that are incomplete leave the port closed and the panel's texts as designed.
  /// @throws Failure if keplo.cfg cannot be read
  Keplo(KeploMod& mod, Win32Ser& line, const KeploWindows& windows, const ui::Clock& clock);
  Keplo(const Keplo&) = delete;
  Keplo& operator=(const Keplo&) = delete;

  /// Loads the event map into collection and list.
  /// @param velmora the host object; kept until InputTerminate
  /// @return 1 if the event map was loaded, 0 if not
  std::int32_t InputInitialise(std::shared_ptr<void> velmora);
  /// Why InputInitialise gave 0, for a person.
  std::string WhyNotInitialised() const;
  std::int32_t InputStartMonitoring();
  std::int32_t InputStopMonitoring();
  bool InputMonitoring() const { return Monitoring; }
  std::int32_t InputTerminate();

  /// Lets the user bind a new event, whose EventID the host has given, to a command.
  /// @return 1 with name, description and command written to the host's object, 0 for a failure, 2 if the
  ///         user cancelled
  std::int32_t InputAddEvent(HostInputEvent& objInputEvent);
  /// Lets the user change the event with the host's EventID; results as InputAddEvent.
  std::int32_t InputModifyEvent(HostInputEvent& objInputEvent);
  /// @return 1 if the event is gone from list, collection and table; 0 if it is not in the list or the
  ///         database cannot be reached
  std::int32_t InputDeleteEvent(const HostInputEvent& objInputEvent);
  /// The identifiers of all events in list order; one empty text for an empty list.
  /// @return 1
  std::int32_t InputHouseKeepingGetEventIDs(std::vector<std::string>& eventIDs) const;
  std::string InputIconFileName() const;
  void InputDisplayAboutBox();
  /// The one item of the plug-in's menu.
  /// @return 1
  std::int32_t InputGetPluginMenuItems(std::vector<std::string>& mnuItems) const;
  std::int32_t InputGetPluginVersion(std::string& szVersion) const;
  std::int32_t InputGetHTMLPage(std::string& szHTML) const;
  std::int32_t InputPostHTMLPage(std::string& szHTML) const;
  /// Takes in what other programs have written to the event map and to keplo.cfg: list, pages, panel and port
  /// follow. For whoever runs the control to call now and then, between two ticks; costs next to nothing
  /// while nothing has changed. Does nothing inside a tick and while the configuration window is open.
  void TakeInChanges();
  /// Whether a change of the event map could not be taken in yet, as while another program holds a lock.
  bool WantsAnotherLook() const;
  /// Whether an event was taken off the list whose row could not be deleted; TakeInChanges brings it back.
  bool ListDiffersFromMap() const { return listDiffersFromMap_; }
  /// The highest number that was the EventID of a deleted event; 0 for none.
  /// @throws Failure if the event map cannot be read
  std::int64_t HighestUsedUpEventID();

  /// Opens the configuration window for the menu item 0; any other item only puts the lines right.
  /// @return true
  bool InputCallMenuItem(std::int16_t index);
  /// Opens the configuration window.
  /// @return 1
  std::int32_t InputConfigurePlugin();

  /// The record that InputInitialise made or the last one that an error path stored; none after
  /// InputTerminate.
  std::shared_ptr<HostErrorRecord> InputErrorDetails() const { return ErrorDetails; }

  /// Fits frame and list into the control.
  /// @param width, height the control's size, twips
  void Resize(int width, int height);

  /// A press of a mouse button on the event list; 2 is the right one.
  void ListView1_MouseDown(int button);
  void EnableMenu_Click() { SwitchSelectedEvent(true); }
  void DisableMenu_Click() { SwitchSelectedEvent(false); }
  void HelpMenu_Click();

  /// Tells the host of a failure and keeps its record for InputErrorDetails. A host whose handler fails too
  /// is left alone.
  /// @return 0
  std::int32_t ReportFailure(std::string_view procedure, const std::exception& failure) noexcept;

  /// The host's handlers; they run inside the call that raises the event.
  std::function<void(HostInputEvent&)> TriggerInputEvent;
  std::function<void(HostErrorRecord&, bool& blnStopping)> TriggerInputErrorCondition;

  /// A key was pressed, is held on, or was let go. The first two run before the input events of the same
  /// capture, one of them for each capture with a code, learned or not; both for two taps within one.
  std::function<void(KeyChange, const KeyPress&)> OnKey;
  /// What time it is on the line: that of the machine, but for a line that plays at its own pace.
  std::function<std::chrono::microseconds()> LineTime;
  /// For how long no tick is needed to find that the key was let go; none while none is held.
  std::optional<std::chrono::microseconds> MayHold() const;

  StatusPanel Panel;
  ui::ListView ListView1;
  ui::Timer Timer1{2};
  ui::PopupMenu RightClickMenu;
  int FrameWidth = 0, FrameHeight = 0;  // twips; the frame stands at left 0, top 0

  const TickReport& LastTick() const { return lastTick_; }
  /// Whether the last capture holds nothing but NEC's signs of a held key, which have no code.
  bool HeardHeldSigns();
  /// Runs when the port has been opened, or could not be, for another reason than the start-up.
  std::function<void()> OnPortOpened;
  /// Runs after a tick that took a capture, for programs that tell a person what became of it.
  std::function<void(const TickReport&)> OnPress;
  /// Whether a capture may be told by its beep, beside what the user has chosen; empty: each may.
  std::function<bool()> MayBeep;
  /// Runs with each signal that a tick has heard, code or none, before the pause after its first event.
  std::function<void(const TickReport&)> OnHeard;

 private:
  void OpenPort();
  void TakeInConfiguration();
  void TakeInSettings(const Settings& settings);
  void RefreshStatusPanel();
  void SetRestingLines();
  void ShowInterface();
  void Timer1_Timer();
  void Tick();
  template <typename Part>
  void Reporting(Part part);
  void RaiseInputEvent(HostInputEvent& event);
  bool LineIsAtRest();
  void Capture();
  void ReadAndDispatch();
  bool RepeatsHeldKey(MonitorReading& reading);
  void CompleteTurn(MonitorReading& reading);
  void TakeHeldRawKey(MonitorReading& reading);
  std::vector<MonitoredTap> TapsOf(const MonitorReading& reading);
  std::size_t SecondTapIn(std::span<const TimedPiece> pieces, const MonitorReading& reading);
  void HearCode(const MonitorReading& reading, const MonitoredTap& tap);
  void TellCode(const MonitorReading& reading);
  bool WasHeldInThePause();
  void Dispatch(const MonitorReading& reading);
  void LookAgain();
  void TimeCapture(std::chrono::microseconds begin);
  void LetGoIfOver();
  void TellHeard();
  void TellReleased(const std::vector<KeyPress>& ended);
  /// The key at the receiver of the last capture.
  HeldKey& Key() { return keys_.Of(watch_.OnAir.Place); }
  void TellKey(KeyChange change, const KeyPress& key);
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
  bool triedPort_ = false;  // the settings were complete once
  bool listDiffersFromMap_ = false;
  std::string toldConfigurationFailure_;
  TickReport lastTick_;
  HeldKeys keys_;
  LineWatch watch_;
  bool toldHeard_ = false;  // the signal of the last capture
};

}  // namespace keplo
