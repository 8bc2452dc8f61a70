#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QWidget;

namespace keplo {

/// The class that the plug-in's component offers.
inline constexpr const char* kInputKeploClass = "InputKeplo.Keplo";

/// Changes whenever an interface in this folder changes; additional interfaces are requested by name and do
/// not change it. Host and component are built with compatible compilers and share the C++ runtime, so that
/// strings and vectors can be passed between them. The headers in this folder require C++17 and nothing else
/// of the plug-in.
inline constexpr std::uint32_t kComponentInterfaceVersion = 4;

/// Levels of log lines, with the numbers of the system's journal.
enum class LogLevel { Error = 3, Warning = 4, Notice = 5, Info = 6 };

/// What a host passes to a new object.
struct CreationContext {
  /// Folder of the configuration file and the event map. It should be absolute; a relative path is resolved
  /// once, at creation.
  std::string ApplicationPath;
  std::vector<std::string> ReplayFiles;  // recordings to play as key presses
  bool ReplayInRealTime = false;         // at the speed of the recordings, not as fast as possible
  double SampleTime = 0;                 // microseconds; 0 for the default
  bool ShapeReplay = true;               // whether to correct the receiver's distortion in recordings
  int HoldMs = -1;                       // how long a single-frame key is held; negative for the default
  std::int32_t Port = 0;                 // COM number for this run; 0 for that of the settings
  bool MayUseDisplay = false;            // whether windows may be shown, for which a QApplication must exist
  std::function<void(LogLevel, const std::string&)> Log = {};
  /// Runs once, inside a tick, when all recordings have been played.
  std::function<void()> ReplayPlayed = {};
};

/// An object of a component. Its interfaces live as long as it does.
class IComponentObject {
 public:
  /// @return the interface of that name; null if the object does not have it
  virtual void* QueryInterface(std::string_view name) = 0;
  /// Deletes the object, inside the component that created it. If called from within an event, deletion is
  /// deferred until the event loop has left the tick or operation, but sinks and callbacks are no longer
  /// called. The component must stay loaded until then: ask DllCanUnloadNow before unloading it.
  virtual void Release() = 0;

 protected:
  ~IComponentObject() = default;
};

struct ReleaseObject {
  void operator()(IComponentObject* object) const { object->Release(); }
};
using ComponentObject = std::unique_ptr<IComponentObject, ReleaseObject>;

/// An interface of an object; null if the object does not have it.
template <typename Interface>
Interface* QueryInterface(IComponentObject& object) {
  return static_cast<Interface*>(object.QueryInterface(Interface::kInterfaceName));
}

/// Creates the objects of a class.
///
/// The plug-in is driven by Qt's event loop: the host must first create a QCoreApplication, or a QApplication
/// if windows may be shown, and run it on the thread that creates the object.
class IComponentClass {
 public:
  /// Creates a first install in an application path without one, or completes one that was interrupted, and
  /// opens the line.
  /// @param context copied; its functions are called until the object is released
  /// @param failure receives the reason, for the user, if no object is created
  /// @return null if there is no QCoreApplication, no QApplication although MayUseDisplay is set, or no
  /// application
  ///         path, if keplo.cfg is lost, or if it or a recording cannot be read
  virtual ComponentObject CreateObject(const CreationContext& context, std::string& failure) = 0;

 protected:
  ~IComponentClass() = default;
};

/// Optional: the view of the object, for a host with windows.
class IControlView {
 public:
  static constexpr std::string_view kInterfaceName = "IControlView";

  /// Creates the view. If there is an earlier one, it is no longer updated.
  /// @param parent owns the view, which must be destroyed before the object
  /// @return null if the object may not use the display
  virtual QWidget* CreateView(QWidget* parent) = 0;
  /// The EventID of the highlighted row of the view's event list; empty if there is none.
  virtual std::string HighlightedEvent() = 0;
  /// @param shown runs whenever the view has shown a change of the list or of the highlighted row, even while
  /// an
  ///        operation is waiting for its dialog; may be empty
  virtual void WhenListIsShown(std::function<void()> shown) = 0;

 protected:
  ~IControlView() = default;
};

/// An event of the event map.
struct EventDetails {
  std::string EventName;
  std::string EventDescription;
  std::string EventCommand;
  bool Activated = false;
  int Zone = 0;
};

/// Optional: access to the event map, for logs and lists of a host.
class IEventCatalogue {
 public:
  static constexpr std::string_view kInterfaceName = "IEventCatalogue";

  /// @return false if there is no such event, as before InputInitialise; details are then unchanged
  virtual bool DescribeEvent(const std::string& eventID, EventDetails& details) = 0;
  /// Whether the last InputDeleteEvent removed an event from the list that is still in the event map, for
  /// example because of another program's lock. The event will return to the list by itself.
  virtual bool ListDiffersFromMap() = 0;
  /// A number that is different after every change of the list.
  virtual std::uint64_t Revision() = 0;

 protected:
  ~IEventCatalogue() = default;
};

/// Optional: which numbers a host must not use for a new event, since it may still have something under them.
class IUsedUpEventIDs {
 public:
  static constexpr std::string_view kInterfaceName = "IUsedUpEventIDs";

  /// The highest numeric EventID of an event deleted by any program; "0" if there is none, or the event map
  /// cannot be read.
  virtual std::string HighestUsedUp() = 0;

 protected:
  ~IUsedUpEventIDs() = default;
};

/// Optional: numbers of key presses so far.
class IPressTally {
 public:
  static constexpr std::string_view kInterfaceName = "IPressTally";

  struct Tally {
    int Presses = 0;       // received
    int Events = 0;        // raised by them
    int WithoutEvent = 0;  // presses that raised none
  };
  virtual Tally Presses() = 0;

 protected:
  ~IPressTally() = default;
};

/// Optional: the stages at which the reading of key presses ended.
class IStageTally {
 public:
  static constexpr std::string_view kInterfaceName = "IStageTally";

  struct Stage {
    std::string Name;     // "no-frame"
    std::string Meaning;  // for the user; empty if the name says it all
    int Presses = 0;      // number of presses that ended there
  };
  /// @return the stages at which presses have ended so far
  virtual std::vector<Stage> Stages() = 0;

 protected:
  ~IStageTally() = default;
};

/// A press of a key of a remote, so far.
struct HeardKey {
  std::string Command;  // "protocol&command"; empty for a code that was not learned
  std::string Code;     // as keplo.cfg has it, with the leading G
  int Count = 0;        // number of signals received for this press, from 1
  int HeldMs = 0;       // from the first mark of the press to the last one received
  int Place = 0;        // of the receiver; keys may be held at several places at the same time
  int Zone = 0;         // of the receiver, 1 to 8; 0 if it has none
};

/// Implemented by a host to receive keys of remotes. Input events are raised for every signal of a key; this
/// interface shows which signals belong to one press. The functions are called synchronously from a tick or
/// call, so they should be quick, and must not throw.
class IKeySink {
 public:
  /// A key was pressed. Called before the input events of the same signal.
  virtual void KeyPressed(const HeardKey& key) = 0;
  /// The key is still held. Called before the input events of the same signal.
  virtual void KeyHeld(const HeardKey& key) = 0;
  /// The key was released: there was no more signal of it for up to a quarter of a second, another key was
  /// pressed, or monitoring was stopped. Called once for each KeyPressed, before the next one at the same
  /// place.
  virtual void KeyReleased(const HeardKey& key) = 0;

 protected:
  ~IKeySink() = default;
};

/// Optional: lets a host subscribe to keys.
class IKeySource {
 public:
  static constexpr std::string_view kInterfaceName = "IKeySource";

  /// @param sink must live until it is unsubscribed
  /// @return a cookie for Unsubscribe, never 0
  virtual std::uint32_t Subscribe(IKeySink& sink) = 0;
  /// Ignores an unknown cookie. May be called from within a sink.
  virtual void Unsubscribe(std::uint32_t cookie) = 0;

 protected:
  ~IKeySource() = default;
};

/// A received signal, with or without a code.
struct HeardSignal {
  std::vector<std::int32_t>
      Timings;                 // microseconds, positive marks, negative spaces; begins and ends with a mark
  std::string Protocol, Code;  // empty without a code
  std::string Command;         // "protocol&command"; empty for a code that was not learned
  int Zone = 0;                // of the receiver, 1 to 8; 0 if it has none
};

/// Implemented by a host to receive signals. Called synchronously from a tick, so it should be quick, and
/// must not throw.
class ISignalSink {
 public:
  virtual void SignalHeard(const HeardSignal& signal) = 0;

 protected:
  ~ISignalSink() = default;
};

/// Optional: lets a host subscribe to signals.
class ISignalSource {
 public:
  static constexpr std::string_view kInterfaceName = "ISignalSource";

  /// @param sink must live until it is unsubscribed
  /// @return a cookie for Unsubscribe, never 0
  virtual std::uint32_t Subscribe(ISignalSink& sink) = 0;
  /// Ignores an unknown cookie. May be called from within SignalHeard.
  virtual void Unsubscribe(std::uint32_t cookie) = 0;

 protected:
  ~ISignalSource() = default;
};

/// Optional: sends on the plug-in's line, synchronously. Signals sent by the plug-in raise no events.
class ISignalSender {
 public:
  static constexpr std::string_view kInterfaceName = "ISignalSender";

  // Both return why nothing was sent, as a text to follow a colon; empty if it was. They must not be called
  // from within an event; post the call to the event loop instead.

  /// @param timings microseconds, positive marks and negative spaces, alternating, beginning with a mark
  /// @param carrier Hz; ignored by lines that cannot set it
  virtual std::string SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier) = 0;
  /// @param command "protocol&command"
  virtual std::string SendCommand(const std::string& command) = 0;

 protected:
  ~ISignalSender() = default;
};

/// The types of the entry points that a component exports.
extern "C" {
/// Writes the class file of each class. @return 0 or the system's error number
using DllRegisterServerEntry = std::int32_t();
/// Removes the class files. @return 0 or the system's error number
using DllUnregisterServerEntry = std::int32_t();
/// @param interfaceVersion kComponentInterfaceVersion of the caller
/// @param componentClass receives the class, which lives as long as the component is loaded
/// @return 0, kUnknownClass or kOtherInterfaceVersion
using DllGetClassObjectEntry = std::int32_t(const char* className, std::uint32_t interfaceVersion,
                                            IComponentClass** componentClass);
/// @return 0 if there are no objects, otherwise 1
using DllCanUnloadNowEntry = std::int32_t();
/// Optional, as "DllGetWriteFailure": @return the system's error number if the last CreateObject failed
/// because a first install could not be written, otherwise 0
using DllGetWriteFailureEntry = std::int32_t();
}

inline constexpr std::int32_t kUnknownClass = 1;
inline constexpr std::int32_t kOtherInterfaceVersion = 2;

}  // namespace keplo
