#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host_records.h"  // beside this file, wherever an install puts both

namespace keplo {

/// The host itself, as it hands itself to a plug-in. A plug-in keeps it from InputInitialise to
/// InputTerminate; a host derives its own object from it.
class IVelmoraHost {
 public:
  virtual ~IVelmoraHost() = default;
};

/// A device behind a plug-in, for plug-ins that have some. This one has none and leaves the records alone.
struct HostDevice {
  std::string DeviceID;
  std::string DeviceName;
  std::int32_t Status = 0;
};

/// A request for the plug-in's page, as the host's web server received it.
struct HostPageRequest {
  std::string Path;
  std::string Query;  // without the question mark
  std::string Body;   // of a POST, as it came
};

/// Results of the operations that return a number.
inline constexpr std::int32_t kInputFailed = 0;
inline constexpr std::int32_t kInputDone = 1;
inline constexpr std::int32_t kInputCancelled = 2;
inline constexpr std::int32_t kInputNoDevices = 3;  // of InputGetDevices

/// What a host calls on an input plug-in. The order of the operations is the order of their slots and never
/// changes; all arguments go by reference.
///
/// A host creates the object by its class name, subscribes to its events (IHostEventSource), calls
/// InputInitialise once, InputStartMonitoring and InputStopMonitoring as often as it wants, InputTerminate
/// once, and releases the object; for monitoring after InputTerminate it creates a new one. Every call, and
/// every event, happens on the thread that created the object; that thread must run the event loop of a
/// QCoreApplication, from which the plug-in takes its ticks. No operation throws: a failure is told by the
/// result, and where the operation says nothing else by TriggerInputErrorCondition.
class IVelmoraInputPLugin {
 public:
  static constexpr std::string_view kInterfaceName = "IVelmoraInputPLugin";

  /// Path of the plug-in's icon; the file need not be there.
  virtual std::string InputIconFileName() = 0;
  /// Shows the about text and waits until it is closed.
  /// @return the empty variant
  virtual HostVariant InputDisplayAboutBox() = 0;
  /// @param mnuItems written with the captions for the host's menu of this plug-in
  /// @return 1
  virtual std::int32_t InputGetPluginMenuItems(std::vector<std::string>& mnuItems) = 0;
  /// Does what a menu item stands for. A window that opens is modal: the call returns when it is closed.
  /// @param index place in mnuItems, from 0; any other opens nothing
  /// @return true, whatever came of it
  virtual HostVariant InputCallMenuItem(std::int16_t& index) = 0;
  /// @return 1; the record stays as it is
  virtual std::int32_t InputQueryDeviceStatus(HostDevice& DevStruct) = 0;
  /// @return 1; nothing is set
  virtual std::int32_t InputSetDeviceStatus(HostDevice& DevStruct) = 0;
  /// @param Stati written with two empty texts
  /// @return 1
  virtual std::int32_t InputQueryAllDeviceStati(std::vector<std::string>& Stati) = 0;
  /// @return 3: there are no devices, and Devices stays as it is
  virtual std::int32_t InputGetDevices(std::vector<HostDevice>& Devices) = 0;
  /// Opens the configuration window, modally; without a display it only logs that it cannot. What the window
  /// could not save is told by TriggerInputErrorCondition.
  /// @return 1
  virtual std::int32_t InputConfigurePlugin() = 0;
  /// Loads the event map. A second call reads it again: what came, changed or went since then is taken in, no
  /// event comes twice, monitoring goes on, and InputErrorDetails begins again.
  /// @param Velmora the host; may be empty
  /// @return 1, or 0 if the event map cannot be loaded: missing, of another kind, or held locked by another
  ///         program. CreationContext::Log gets the reason; TriggerInputErrorCondition tells only of single
  ///         rows that cannot be used, with a 0 or a 1.
  virtual std::int32_t InputInitialise(std::shared_ptr<IVelmoraHost>& Velmora) = 0;
  /// @return 1; from now on input events come, whether the line could be opened or not
  virtual std::int32_t InputStartMonitoring() = 0;
  /// From within an event it does not last, since the end of the tick turns the timer on again: post it to
  /// the event loop.
  /// @return 1
  virtual std::int32_t InputStopMonitoring() = 0;
  /// Closes the line and lets go of the host. Stop monitoring first. It lasts from within an event too.
  /// @return 1
  virtual std::int32_t InputTerminate() = 0;
  /// Lets the user fill in a new event in a modal dialog; without a display the dialog counts as cancelled.
  /// @param objInputEvent carries the EventID that the host has given the event; written with EventName,
  ///        EventDescription and EventCommand if the event was saved
  /// @return 1 saved, 2 the user cancelled, 0 failed: TriggerInputErrorCondition has told why, for instance
  ///         that the event map is locked; it tells nothing if the event map cannot be opened at all
  virtual std::int32_t InputAddEvent(HostInputEvent& objInputEvent) = 0;
  /// Takes an event off the list, then out of the event map. Not from within an event, which the walk through
  /// the list raises: it may pass over the row after the deleted one. Post it to the event loop.
  /// @param objInputEvent its EventID names the event
  /// @return 0 if there is no such event or the event map cannot be opened, else 1: also where the event map
  ///         is locked and keeps the event, which comes back to the list by itself then. Neither is told by
  ///         TriggerInputErrorCondition; IEventCatalogue::ListDiffersFromMap knows.
  virtual std::int32_t InputDeleteEvent(HostInputEvent& objInputEvent) = 0;
  /// Whether the host has started monitoring and not stopped it.
  virtual bool InputMonitoring() = 0;
  /// Lets the user change the event with this EventID; written and returned as by InputAddEvent. An EventID
  /// that the event map does not have is a failure that TriggerInputErrorCondition tells.
  virtual std::int32_t InputModifyEvent(HostInputEvent& objInputEvent) = 0;
  /// The last failure of an operation or tick; without a failure an empty record. Null before InputInitialise
  /// and after InputTerminate, unless something fails then. Failures of the event map alone come with
  /// TriggerInputErrorCondition only. Drop the record before the component is unloaded, whose code ends it.
  virtual std::shared_ptr<HostErrorRecord> InputErrorDetails() = 0;
  /// @param EventIDs written with the identifiers of all events, so that a host can forget those it no longer
  ///        meets; one empty text if there are no events
  /// @return 1
  virtual std::int32_t InputHouseKeepingGetEventIDs(std::vector<std::string>& EventIDs) = 0;
  /// @param szVersion written with major, minor and revision, joined by points
  /// @return 1
  virtual std::int32_t InputGetPluginVersion(std::string& szVersion) = 0;
  /// The plug-in's page for a GET.
  /// @param szHTML written with the page, bytes as a browser is to get them. Texts of the user stand in it
  ///        unescaped: send it with a content-security policy that allows no scripts.
  /// @param Request, Btype, lwidth, lheight the request, the kind of browser and its size in pixels; none of
  ///        them is looked at
  /// @return 1
  virtual std::int32_t InputGetHTMLPage(std::string& szHTML, HostPageRequest& Request, std::int32_t& Btype,
                                        std::int32_t& lwidth, std::int32_t& lheight) = 0;
  /// The plug-in's page for a POST; what was posted is not looked at.
  virtual std::int32_t InputPostHTMLPage(std::string& szHTML, HostPageRequest& Request, std::int32_t& Btype,
                                         std::int32_t& lwidth, std::int32_t& lheight) = 0;

 protected:
  ~IVelmoraInputPLugin() = default;
};

/// What a host does with the events of a plug-in. Both run inside the call or tick that raises them: be
/// quick, since the next tick waits. Neither should throw: what TriggerInputEvent throws comes back as
/// TriggerInputErrorCondition, what that one throws is dropped, and the other sinks and events get their
/// turn.
class IHostEventSink {
 public:
  /// A command was heard to which an activated event is bound. EventCommand holds "protocol&command", EventID
  /// names the event; the other fields are not filled in. All events of one press come in one object, one
  /// after the other: copy what you keep.
  virtual void TriggerInputEvent(HostInputEvent& objInputEvent) = 0;
  /// Something failed.
  /// @param blnStopping whether the plug-in stops because of it; this plug-in never does
  virtual void TriggerInputErrorCondition(HostErrorRecord& objErr, bool& blnStopping) = 0;

 protected:
  ~IHostEventSink() = default;
};

/// Where a host subscribes to the events of a plug-in.
class IHostEventSource {
 public:
  static constexpr std::string_view kInterfaceName = "IHostEventSource";

  /// @param sink must live until it is unsubscribed
  /// @return a cookie for Unsubscribe, never 0
  virtual std::uint32_t Subscribe(IHostEventSink& sink) = 0;
  /// An unknown cookie changes nothing. May be called from within an event.
  virtual void Unsubscribe(std::uint32_t cookie) = 0;

 protected:
  ~IHostEventSource() = default;
};

}  // namespace keplo
