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

/// The host's side of a plug-in: creates it, passes its reports to the outputs, and the user's changes of the
/// event map to it. Must outlive the views.
class PluginHost : private IHostEventSink, private IKeySink, private ISignalSink {
 public:
  /// @param outputs must outlive the host
  /// @throws Failure if the object cannot be created
  PluginHost(const Component& component, const CreationContext& context, EventBook& book, const HostLog& log,
             std::vector<EventOutput*> outputs);
  virtual ~PluginHost();
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;

  /// Loads the event map and starts monitoring.
  /// @throws Failure if the event map cannot be loaded
  void Start();
  /// Stops monitoring and terminates the plug-in, unless that was already done.
  void Stop();

  /// Adds an output before the others, so that it does not wait for the start of their programs.
  void AddOutput(EventOutput& output) { outputs_.insert(outputs_.begin(), &output); }
  void RemoveOutput(EventOutput& output) { std::erase(outputs_, &output); }

  IVelmoraInputPLugin& Plugin() const { return *plugin_; }
  /// The plug-in's view; null if it has none.
  QWidget* CreateView(QWidget* parent);
  /// The EventID of the row that is highlighted in the view; empty if there is none.
  std::string HighlightedEvent() const;
  /// Numbers of presses; none if the plug-in does not provide them.
  std::optional<IPressTally::Tally> Presses() const;
  /// The stages at which presses ended; empty if the plug-in does not provide them.
  std::vector<IStageTally::Stage> Stages() const;
  /// The EventIDs in the event map.
  std::vector<std::string> EventIDs() const;
  RaisedEvent Describe(const std::string& eventID) const;
  /// A number that changes with the events; none if the plug-in does not provide it.
  std::optional<std::uint64_t> EventsRevision() const;
  /// The activated events.
  std::vector<RaisedEvent> ActivatedEvents() const;

  // Both return why nothing was sent; empty if it was.
  std::string SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier);
  std::string SendCommand(const std::string& command);

  // These return the result of the plug-in's operation.
  std::int32_t AddEvent();
  std::int32_t ModifyEvent(const std::string& eventID);
  std::int32_t DeleteEvent(const std::string& eventID);
  /// Whether the event of the last deletion is still in the event map.
  bool ListDiffersFromMap() const;

  EventBook& Book() { return book_; }

  /// The last key that was pressed, with its progress so far; none before the first.
  const std::optional<HeardKey>& LastKey() const { return lastKey_; }

  /// Runs when the view has shown a change of the list or of the highlighted row.
  std::function<void()> OnListShown;

 private:
  CreationContext WithOwnLog(CreationContext context);
  void TriggerInputEvent(HostInputEvent& objInputEvent) override;
  void TriggerInputErrorCondition(HostErrorRecord& objErr, bool& blnStopping) override;
  void KeyPressed(const HeardKey& key) override;
  void KeyHeld(const HeardKey& key) override;
  void KeyReleased(const HeardKey& key) override;
  void SignalHeard(const HeardSignal& signal) override;
  void ReportKey(PressStage stage, const HeardKey& key);
  template <typename... Parameters, typename... Arguments>
  void CallOutputs(void (EventOutput::*what)(Parameters...), const Arguments&... arguments) {
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
