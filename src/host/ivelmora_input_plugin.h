#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host_records.h"  // in the same folder, wherever the headers are installed

namespace keplo {

/// The host, which derives its own object from this. A plug-in keeps it from InputInitialise to
/// InputTerminate.
class IVelmoraHost {
 public:
  virtual ~IVelmoraHost() = default;
};

/// A device of a plug-in. This plug-in has none and ignores such records.
struct HostDevice {
  std::string DeviceID;
  std::string DeviceName;
  std::int32_t Status = 0;
};

/// A request for the plug-in's page, as the host's web server received it.
struct HostPageRequest {
  std::string Path;
  std::string Query;  // without the question mark
  std::string Body;   // of a POST
};

/// Results of operations that return a number.
inline constexpr std::int32_t kInputFailed = 0;
inline constexpr std::int32_t kInputDone = 1;
inline constexpr std::int32_t kInputCancelled = 2;
inline constexpr std::int32_t kInputNoDevices = 3;  // of InputGetDevices

/// The operations of an input plug-in. Their order determines the binary interface and never changes; all
/// arguments are passed by reference.
///
/// A host creates the object by its class name, subscribes to its events (IHostEventSource), calls
/// InputInitialise once, InputStartMonitoring and InputStopMonitoring as often as it likes, InputTerminate
/// once, and releases the object; to monitor after InputTerminate, it creates a new object. All calls and
/// events are on the thread that created the object, which must run the event loop of a QCoreApplication.
/// Operations do not throw: a failure is indicated by the result and, unless stated otherwise, reported by
/// TriggerInputErrorCondition.
class IVelmoraInputPLugin {
 public:
  static constexpr std::string_view kInterfaceName = "IVelmoraInputPLugin";

  /// Path of the plug-in's icon; the file need not exist.
  virtual std::string InputIconFileName() = 0;
  /// Shows the about box and waits until it is closed.
  /// @return the empty variant
  virtual HostVariant InputDisplayAboutBox() = 0;
  /// @param mnuItems receives the captions for the host's menu of this plug-in
  /// @return 1
  virtual std::int32_t InputGetPluginMenuItems(std::vector<std::string>& mnuItems) = 0;
  /// Runs a menu item. If it opens a window, the call returns when that is closed.
  /// @param index index in mnuItems, from 0; any other value opens nothing
  /// @return true in any case
  virtual HostVariant InputCallMenuItem(std::int16_t& index) = 0;
  /// @return 1; the record is unchanged
  virtual std::int32_t InputQueryDeviceStatus(HostDevice& DevStruct) = 0;
  /// @return 1; nothing is set
  virtual std::int32_t InputSetDeviceStatus(HostDevice& DevStruct) = 0;
  /// @param Stati receives two empty texts
  /// @return 1
  virtual std::int32_t InputQueryAllDeviceStati(std::vector<std::string>& Stati) = 0;
  /// @return 3: there are no devices, and Devices is unchanged
  virtual std::int32_t InputGetDevices(std::vector<HostDevice>& Devices) = 0;
  /// Opens the configuration window modally; without a display it only writes to the log. If the window could
  /// not save something, TriggerInputErrorCondition reports it.
  /// @return 1
  virtual std::int32_t InputConfigurePlugin() = 0;
  /// Loads the event map. A second call updates it to the current state of the database, without interrupting
  /// monitoring, and clears InputErrorDetails.
  /// @param Velmora the host; may be empty
  /// @return 1, or 0 if the event map cannot be loaded because it is missing, is something else, or is locked
  /// by
  ///         another program. The reason is written to CreationContext::Log; TriggerInputErrorCondition only
  ///         reports unusable rows, in both cases.
  virtual std::int32_t InputInitialise(std::shared_ptr<IVelmoraHost>& Velmora) = 0;
  /// @return 1, even if the line could not be opened
  virtual std::int32_t InputStartMonitoring() = 0;
  /// Has no lasting effect if called from within an event, since the end of the tick turns the timer on
  /// again; post the call to the event loop instead.
  /// @return 1
  virtual std::int32_t InputStopMonitoring() = 0;
  /// Closes the line and releases the host. Stop monitoring first. May be called from within an event.
  /// @return 1
  virtual std::int32_t InputTerminate() = 0;
  /// Lets the user fill in a new event in a modal dialog; without a display the dialog counts as cancelled.
  /// @param objInputEvent has the EventID assigned by the host; receives EventName, EventDescription and
  ///        EventCommand if the event was saved
  /// @return 1 if saved, 2 if the user cancelled, 0 if it failed. TriggerInputErrorCondition has then
  /// reported the
  ///         reason, for example that the event map is locked, unless the event map cannot be opened at all.
  virtual std::int32_t InputAddEvent(HostInputEvent& objInputEvent) = 0;
  /// Deletes an event from the list and from the event map. If called from within an event, other events of
  /// the same press may be skipped; post the call to the event loop instead.
  /// @param objInputEvent its EventID identifies the event
  /// @return 0 if there is no such event or the event map cannot be opened, otherwise 1, even if the event
  /// map is
  ///         locked and keeps the event, which will then return to the list by itself. Neither is reported by
  ///         TriggerInputErrorCondition; see IEventCatalogue::ListDiffersFromMap.
  virtual std::int32_t InputDeleteEvent(HostInputEvent& objInputEvent) = 0;
  /// Whether the host has started monitoring and not stopped it.
  virtual bool InputMonitoring() = 0;
  /// Lets the user edit the event with this EventID; arguments and results as for InputAddEvent. An unknown
  /// EventID is a failure reported by TriggerInputErrorCondition.
  virtual std::int32_t InputModifyEvent(HostInputEvent& objInputEvent) = 0;
  /// The last failure of an operation or tick; an empty record if there was none. Null before InputInitialise
  /// and after InputTerminate, unless something fails then. Failures of the event map itself are only
  /// reported by TriggerInputErrorCondition. Release the record before unloading the component, whose code
  /// destroys it.
  virtual std::shared_ptr<HostErrorRecord> InputErrorDetails() = 0;
  /// @param EventIDs receives the identifiers of all events, so that a host can forget those that no longer
  /// exist; a
  ///        single empty text if there are no events
  /// @return 1
  virtual std::int32_t InputHouseKeepingGetEventIDs(std::vector<std::string>& EventIDs) = 0;
  /// @param szVersion receives major, minor and revision, joined by points
  /// @return 1
  virtual std::int32_t InputGetPluginVersion(std::string& szVersion) = 0;
  /// The plug-in's page for a GET.
  /// @param szHTML receives the page, as bytes for the browser. Texts of the user are not escaped: send it
  /// with a
  ///        content-security policy that allows no scripts.
  /// @param Request, Btype, lwidth, lheight the request, the kind of browser and its size in pixels; ignored
  /// @return 1
  virtual std::int32_t InputGetHTMLPage(std::string& szHTML, HostPageRequest& Request, std::int32_t& Btype,
                                        std::int32_t& lwidth, std::int32_t& lheight) = 0;
  /// The plug-in's page for a POST; the posted data is ignored.
  virtual std::int32_t InputPostHTMLPage(std::string& szHTML, HostPageRequest& Request, std::int32_t& Btype,
                                         std::int32_t& lwidth, std::int32_t& lheight) = 0;

 protected:
  ~IVelmoraInputPLugin() = default;
};

/// Implemented by a host to receive the events of a plug-in. Both functions are called synchronously, so they
/// should be quick. They should not throw: an exception from TriggerInputEvent is reported by
/// TriggerInputErrorCondition, one from the latter is dropped; other sinks and events are not affected.
class IHostEventSink {
 public:
  /// A command was received to which an activated event is bound. EventCommand is "protocol&command", EventID
  /// identifies the event; the other fields are empty. The same object is reused for all events of a press,
  /// so copy what you keep.
  virtual void TriggerInputEvent(HostInputEvent& objInputEvent) = 0;
  /// Something failed.
  /// @param blnStopping whether the plug-in will stop because of it; never true for this plug-in
  virtual void TriggerInputErrorCondition(HostErrorRecord& objErr, bool& blnStopping) = 0;

 protected:
  ~IHostEventSink() = default;
};

/// Lets a host subscribe to the events of a plug-in.
class IHostEventSource {
 public:
  static constexpr std::string_view kInterfaceName = "IHostEventSource";

  /// @param sink must live until it is unsubscribed
  /// @return a cookie for Unsubscribe, never 0
  virtual std::uint32_t Subscribe(IHostEventSink& sink) = 0;
  /// Ignores an unknown cookie. May be called from within an event.
  virtual void Unsubscribe(std::uint32_t cookie) = 0;

 protected:
  ~IHostEventSource() = default;
};

}  // namespace keplo
