#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "component_loader/component_frame.h"
#include "host/ivelmora_input_plugin.h"
#include "host_program/event_book.h"
#include "host_program/event_output.h"
#include "host_program/host_log.h"

namespace keplo::host {

/// The host's side of one plug-in: creates it, tells its outputs what it tells, and carries the user's
/// changes of the event map to it. Outlives the views.
class PluginHost : private IHostEventSink, private IKeySink, private ISignalSink {
 public:
  /// @throws Failure if the object cannot be created
  /// @param outputs outlive the host
  PluginHost(const Component& component, const CreationContext& context, EventBook& book, const HostLog& log,
             std::vector<EventOutput*> outputs);
  virtual ~PluginHost();
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;

  /// Loads the event map and starts monitoring.
  /// @throws Failure if the event map cannot be loaded
  void Start();
  /// Stops monitoring and terminates the plug-in; once is enough.
  void Stop();

  /// An output that comes later is told before the others, so that it does not wait for their programs.
  void AddOutput(EventOutput& output) { outputs_.insert(outputs_.begin(), &output); }
  void RemoveOutput(EventOutput& output) { std::erase(outputs_, &output); }

  IVelmoraInputPLugin& Plugin() const { return *plugin_; }
  /// Its view; null if it offers none.
  QWidget* CreateView(QWidget* parent);
  /// The EventID of the row that is highlighted in the view; empty for none.
  std::string HighlightedEvent() const;
  /// What became of the presses; empty if the plug-in does not tell.
  std::optional<IPressTally::Tally> Presses() const;
  /// How far the reading of them came; empty if the plug-in does not tell.
  std::vector<IStageTally::Stage> Stages() const;
  /// Identifiers of the events in the map.
  std::vector<std::string> EventIDs() const;
  RaisedEvent Describe(const std::string& eventID) const;
  /// Another number whenever an event has become another, come or gone; none if the plug-in does not tell.
  std::optional<std::uint64_t> EventsRevision() const;
  /// The events of the map that may be raised.
  std::vector<RaisedEvent> ActivatedEvents() const;

  // Each gives why nothing was sent; empty if it was.
  std::string SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier);
  std::string SendCommand(const std::string& command);

  // Each runs the plug-in's operation and gives its result.
  std::int32_t AddEvent();
  std::int32_t ModifyEvent(const std::string& eventID);
  std::int32_t DeleteEvent(const std::string& eventID);
  /// Whether the last deletion has left its event in the event map.
  bool ListDiffersFromMap() const;

  EventBook& Book() { return book_; }

  /// The key that was pressed last, as far as it went; none before the first.
  const std::optional<HeardKey>& LastKey() const { return lastKey_; }

  /// Runs when the view has shown another list or another highlighted row.
  std::function<void()> OnListShown;

 private:
  CreationContext WithOwnLog(CreationContext context);
  void TriggerInputEvent(HostInputEvent& objInputEvent) override;
  void TriggerInputErrorCondition(HostErrorRecord& objErr, bool& blnStopping) override;
  void KeyPressed(const HeardKey& key) override;
  void KeyHeld(const HeardKey& key) override;
  void KeyReleased(const HeardKey& key) override;
  void SignalHeard(const HeardSignal& signal) override;
  void TellKey(PressStage stage, const HeardKey& key);
  template <typename... Parameters, typename... Arguments>
  void Tell(void (EventOutput::*what)(Parameters...), const Arguments&... arguments) {
    for (EventOutput* output : outputs_) (output->*what)(arguments...);
  }

  EventBook& book_;
  const HostLog& log_;
  std::vector<EventOutput*> outputs_;
  ComponentObject object_;
  IVelmoraInputPLugin* plugin_;
  IHostEventSource* events_;
  IEventCatalogue* catalogue_;
  IControlView* view_;
  IKeySource* keys_;
  std::uint32_t cookie_;
  std::uint32_t keyCookie_ = 0;
  ISignalSource* signals_;
  std::uint32_t signalCookie_ = 0;
  std::optional<HeardKey> lastKey_;
  bool started_ = false;
};

}  // namespace keplo::host
