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

/// Changes with every change of an interface in this folder; one that comes in addition is asked for by its
/// name. Host and component are built by the same
/// kind of compiler and share the C++ runtime, so that strings and vectors pass between them. The headers of
/// this folder need C++17 and nothing else of the plug-in.
inline constexpr std::uint32_t kComponentInterfaceVersion = 4;

/// Levels of log lines, numbered as the system's journal does.
enum class LogLevel { Error = 3, Warning = 4, Notice = 5, Info = 6 };

/// What a host hands to a new object.
struct CreationContext {
  /// Folder of the configuration file and the event map. Name it absolutely: a relative one is looked for in
  /// the current folder, once, at creation.
  std::string ApplicationPath;
  std::vector<std::string> ReplayFiles;  // recordings to play as key presses
  bool ReplayInRealTime = false;         // at the clock of the recordings, not as fast as possible
  double SampleTime = 0;                 // microseconds; 0 for the usual one
  bool ShapeReplay = true;               // take the receiver's distortion off the recordings
  int HoldMs = -1;                       // how long a single-frame key is held; negative for the usual time
  std::int32_t Port = 0;                 // COM number for this run; 0 for that of the settings
  bool MayUseDisplay = false;            // whether a QApplication is there and windows may be shown
  std::function<void(LogLevel, const std::string&)> Log = {};
  /// Runs once, inside a tick, when every recording has been played.
  std::function<void()> ReplayPlayed = {};
};

/// An object of a component. Its interfaces live as long as itself.
class IComponentObject {
 public:
  /// @return the interface of that name, or null if the object has none
  virtual void* QueryInterface(std::string_view name) = 0;
  /// Ends the object; runs inside the component that created it. From within an event it is deferred until
  /// the event loop has left the tick or operation; sinks and callbacks hear nothing more. The component
  /// stays loaded until then: ask DllCanUnloadNow before unloading it.
  virtual void Release() = 0;

 protected:
  ~IComponentObject() = default;
};

struct ReleaseObject {
  void operator()(IComponentObject* object) const { object->Release(); }
};
using ComponentObject = std::unique_ptr<IComponentObject, ReleaseObject>;

/// The interface of an object; null if it has none of that kind.
template <typename Interface>
Interface* QueryInterface(IComponentObject& object) {
  return static_cast<Interface*>(object.QueryInterface(Interface::kInterfaceName));
}

/// Creates the objects of a class.
///
/// The plug-in takes its ticks from Qt's event loop: the host makes a QCoreApplication first, a QApplication
/// if windows may be shown, and runs it on the thread that creates the object. Without one no object comes.
class IComponentClass {
 public:
  /// Brings a first install to an application path without any, or completes one that was cut short, and
  /// opens the line.
  /// @param context copied; its functions are called until the object is released
  /// @param failure written with the reason if no object comes, for a person
  /// @return null if there is no object: no QCoreApplication, no QApplication although MayUseDisplay is set,
  ///         no application path, a keplo.cfg that is lost, or one or a recording that cannot be read
  virtual ComponentObject CreateObject(const CreationContext& context, std::string& failure) = 0;

 protected:
  ~IComponentClass() = default;
};

/// Optional: the object's view, for a host with windows.
class IControlView {
 public:
  static constexpr std::string_view kInterfaceName = "IControlView";

  /// @param parent owns the view; destroy the view before the object
  /// A second view takes over from the first, which goes on to show what it showed last.
  /// @return null if the object may not use the display
  virtual QWidget* CreateView(QWidget* parent) = 0;
  /// The EventID of the row that is highlighted in the view's event list; empty for none.
  virtual std::string HighlightedEvent() = 0;
  /// @param shown runs whenever the view has shown another list or another highlighted row, also while an
  ///        operation waits for its dialog; none ends that
  virtual void WhenListIsShown(std::function<void()> shown) = 0;

 protected:
  ~IControlView() = default;
};

/// One event of the map, as its user sees it.
struct EventDetails {
  std::string EventName;
  std::string EventDescription;
  std::string EventCommand;
  bool Activated = false;
  int Zone = 0;
};

/// Optional: looks into the event map, for logs and lists of a host.
class IEventCatalogue {
 public:
  static constexpr std::string_view kInterfaceName = "IEventCatalogue";

  /// @return false if there is no such event, as before InputInitialise; details stay as they are then
  virtual bool DescribeEvent(const std::string& eventID, EventDetails& details) = 0;
  /// Whether the last InputDeleteEvent has taken an event off the list whose row is still in the event map,
  /// as happens while another program holds the map locked. The event comes back to the list by itself.
  virtual bool ListDiffersFromMap() = 0;
  /// Another number whenever an event has become another, come or gone.
  virtual std::uint64_t Revision() = 0;

 protected:
  ~IEventCatalogue() = default;
};

/// Optional: which numbers a host must not give a new event, since it may still have something under them.
class IUsedUpEventIDs {
 public:
  static constexpr std::string_view kInterfaceName = "IUsedUpEventIDs";

  /// The highest number that was the EventID of an event that was deleted, by whatever program; "0" if there
  /// is none or the event map cannot be read.
  virtual std::string HighestUsedUp() = 0;

 protected:
  ~IUsedUpEventIDs() = default;
};

/// Optional: what has become of the key presses so far.
class IPressTally {
 public:
  static constexpr std::string_view kInterfaceName = "IPressTally";

  struct Tally {
    int Presses = 0;       // heard
    int Events = 0;        // raised
    int WithoutEvent = 0;  // presses that raised none
  };
  virtual Tally Presses() = 0;

 protected:
  ~IPressTally() = default;
};

/// Optional: how far the reading of the key presses came.
class IStageTally {
 public:
  static constexpr std::string_view kInterfaceName = "IStageTally";

  struct Stage {
    std::string Name;     // "no-frame"
    std::string Meaning;  // for a person; empty where the name says it
    int Presses = 0;      // whose reading ended there
  };
  /// @return the stages at which a press has ended so far
  virtual std::vector<Stage> Stages() = 0;

 protected:
  ~IStageTally() = default;
};

/// A key of a remote, from its press on.
struct HeardKey {
  std::string Command;  // "protocol&command"; empty for a code that was not learned
  std::string Code;     // as keplo.cfg has it, with the leading G
  int Count = 0;        // signals of this press that were heard so far, from 1
  int HeldMs = 0;       // from the first mark of the press to the last one heard so far
  int Place = 0;        // of the receiver; keys at several places are held at the same time
  int Zone = 0;         // of the receiver, 1 to 8; 0 if it has none
};

/// What a host does with the keys of remotes. An input event comes with every signal of a key; this tells
/// which of them are one press. All three run inside the tick or call that raises them: be quick, and do not
/// throw.
class IKeySink {
 public:
  /// A key was pressed. Runs before the input events of the same signal.
  virtual void KeyPressed(const HeardKey& key) = 0;
  /// The key is still held; runs before the input events of the same signal.
  virtual void KeyHeld(const HeardKey& key) = 0;
  /// The key was let go: nothing more came of it for some time, up to a quarter of a second, or another key
  /// was pressed, or monitoring stopped. Comes once for each KeyPressed, before the next one of its place.
  virtual void KeyReleased(const HeardKey& key) = 0;

 protected:
  ~IKeySink() = default;
};

/// Optional: where a host subscribes to the keys.
class IKeySource {
 public:
  static constexpr std::string_view kInterfaceName = "IKeySource";

  /// @param sink must live until it is unsubscribed
  /// @return a cookie for Unsubscribe, never 0
  virtual std::uint32_t Subscribe(IKeySink& sink) = 0;
  /// An unknown cookie changes nothing. May be called from within a key's call.
  virtual void Unsubscribe(std::uint32_t cookie) = 0;

 protected:
  ~IKeySource() = default;
};

/// A signal of the air, whether or not a code was read from it.
struct HeardSignal {
  std::vector<std::int32_t> Timings;  // microseconds, marks positive, spaces negative, a mark at both ends
  std::string Protocol, Code;         // empty without a code
  std::string Command;                // "protocol&command"; empty for a code that was not learned
  int Zone = 0;                       // of the receiver that has heard it, 1 to 8; 0 if it has none
};

/// What a host does with signals. Runs inside the tick that has heard one: be quick, and do not throw.
class ISignalSink {
 public:
  virtual void SignalHeard(const HeardSignal& signal) = 0;

 protected:
  ~ISignalSink() = default;
};

/// Optional: where a host subscribes to the signals that are heard.
class ISignalSource {
 public:
  static constexpr std::string_view kInterfaceName = "ISignalSource";

  /// @param sink must live until it is unsubscribed
  /// @return a cookie for Unsubscribe, never 0
  virtual std::uint32_t Subscribe(ISignalSink& sink) = 0;
  /// An unknown cookie changes nothing. May be called from within SignalHeard.
  virtual void Unsubscribe(std::uint32_t cookie) = 0;

 protected:
  ~ISignalSource() = default;
};

/// Optional: sends on the plug-in's line, while the caller waits. What the plug-in sends itself raises
/// nothing.
class ISignalSender {
 public:
  static constexpr std::string_view kInterfaceName = "ISignalSender";

  // Each gives why nothing was sent, to follow a colon; empty if it was. Not from within an event: post it.
  /// @param timings microseconds, marks positive, spaces negative, alternating from a mark on
  /// @param carrier Hz; lines that cannot set it keep their own
  virtual std::string SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier) = 0;
  /// @param command "protocol&command"
  virtual std::string SendCommand(const std::string& command) = 0;

 protected:
  ~ISignalSender() = default;
};

/// The entry points of a component, by the names under which it exports them.
extern "C" {
/// Writes the class file of each class. @return 0 or the system's error number
using DllRegisterServerEntry = std::int32_t();
/// Removes the class files. @return 0 or the system's error number
using DllUnregisterServerEntry = std::int32_t();
/// @param interfaceVersion kComponentInterfaceVersion of the caller
/// @param componentClass written with the class, which lives as long as the component is loaded
/// @return 0, kUnknownClass or kOtherInterfaceVersion
using DllGetClassObjectEntry = std::int32_t(const char* className, std::uint32_t interfaceVersion,
                                            IComponentClass** componentClass);
/// @return 0 if no object is alive, else 1
using DllCanUnloadNowEntry = std::int32_t();
/// Optional, as "DllGetWriteFailure": whether the last CreateObject gave no object because a first install
/// could not be written. @return 0 if not, else the system's error number
using DllGetWriteFailureEntry = std::int32_t();
}

inline constexpr std::int32_t kUnknownClass = 1;
inline constexpr std::int32_t kOtherInterfaceVersion = 2;

}  // namespace keplo
