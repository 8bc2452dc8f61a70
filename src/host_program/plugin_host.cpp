#include "host_program/plugin_host.h"

#include <cerrno>
#include <utility>

#include "failure.h"
#include "program/local_time.h"

namespace keplo::host {

namespace {

template <typename Interface>
Interface* Required(IComponentObject& object) {
  auto* found = QueryInterface<Interface>(object);
  if (found == nullptr) {
    throw Failure(EPROTO, "The plug-in has no interface " + std::string(Interface::kInterfaceName) + ".");
  }
  return found;
}

}  // namespace

PluginHost::PluginHost(const Component& component, const CreationContext& context, EventBook& book,
                       const HostLog& log, std::vector<EventOutput*> outputs)
    : book_(book),
      log_(log),
      outputs_(std::move(outputs)),
      object_(component.Create(kInputKeploClass, WithOwnLog(context))),
      plugin_(Required<IVelmoraInputPLugin>(*object_)),
      events_(Required<IHostEventSource>(*object_)),
      catalogue_(QueryInterface<IEventCatalogue>(*object_)),
      view_(QueryInterface<IControlView>(*object_)),
      keys_(QueryInterface<IKeySource>(*object_)),
      cookie_(events_->Subscribe(*this)),
      signals_(QueryInterface<ISignalSource>(*object_)) {
  if (keys_ != nullptr) keyCookie_ = keys_->Subscribe(*this);
  if (signals_ != nullptr) signalCookie_ = signals_->Subscribe(*this);
}

PluginHost::~PluginHost() {
  Stop();
  if (signals_ != nullptr) signals_->Unsubscribe(signalCookie_);
  if (keys_ != nullptr) keys_->Unsubscribe(keyCookie_);
  events_->Unsubscribe(cookie_);
}

CreationContext PluginHost::WithOwnLog(CreationContext context) {
  context.Log = [this](LogLevel level, const std::string& text) {
    CallOutputs(&EventOutput::Logged, level, text);
  };
  return context;
}

void PluginHost::Start() {
  auto velmora = std::make_shared<IVelmoraHost>();
  started_ = true;
  if (plugin_->InputInitialise(velmora) != kInputDone) {
    throw Failure(EIO, "The plug-in did not come up.");
  }
  plugin_->InputStartMonitoring();
}

void PluginHost::Stop() {
  if (!std::exchange(started_, false)) return;
  plugin_->InputStopMonitoring();
  plugin_->InputTerminate();
}

QWidget* PluginHost::CreateView(QWidget* parent) {
  if (view_ == nullptr) return nullptr;
  view_->WhenListIsShown([this] {
    if (OnListShown) OnListShown();
  });
  return view_->CreateView(parent);
}

std::string PluginHost::HighlightedEvent() const {
  return view_ == nullptr ? std::string() : view_->HighlightedEvent();
}

std::optional<IPressTally::Tally> PluginHost::Presses() const {
  auto* tally = QueryInterface<IPressTally>(*object_);
  return tally == nullptr ? std::nullopt : std::optional(tally->Presses());
}

std::vector<IStageTally::Stage> PluginHost::Stages() const {
  auto* tally = QueryInterface<IStageTally>(*object_);
  return tally == nullptr ? std::vector<IStageTally::Stage>() : tally->Stages();
}

std::vector<std::string> PluginHost::EventIDs() const {
  std::vector<std::string> eventIDs;
  plugin_->InputHouseKeepingGetEventIDs(eventIDs);
  if (eventIDs.size() == 1 && eventIDs.front().empty()) eventIDs.clear();
  return eventIDs;
}

RaisedEvent PluginHost::Describe(const std::string& eventID) const {
  RaisedEvent event;
  event.Time = LocalTime();
  event.EventID = eventID;
  EventDetails details;
  if (catalogue_ == nullptr || !catalogue_->DescribeEvent(eventID, details)) return event;
  event.EventName = details.EventName;
  event.EventDescription = details.EventDescription;
  event.Command = details.EventCommand;
  event.Zone = details.Zone;
  return event;
}

std::optional<std::uint64_t> PluginHost::EventsRevision() const {
  return catalogue_ == nullptr ? std::nullopt : std::optional(catalogue_->Revision());
}

std::vector<RaisedEvent> PluginHost::ActivatedEvents() const {
  std::vector<RaisedEvent> events;
  EventDetails details;
  for (const std::string& eventID : EventIDs()) {
    if (catalogue_ == nullptr || !catalogue_->DescribeEvent(eventID, details) || !details.Activated) continue;
    events.push_back(
        {"", eventID, details.EventName, details.EventDescription, details.EventCommand, details.Zone});
  }
  return events;
}

std::string PluginHost::SendSignal(const std::vector<std::int32_t>& timings, std::int32_t carrier) {
  auto* sender = QueryInterface<ISignalSender>(*object_);
  return sender == nullptr ? "the plug-in cannot send" : sender->SendSignal(timings, carrier);
}

std::string PluginHost::SendCommand(const std::string& command) {
  auto* sender = QueryInterface<ISignalSender>(*object_);
  return sender == nullptr ? "the plug-in cannot send" : sender->SendCommand(command);
}

std::int32_t PluginHost::AddEvent() {
  HostInputEvent event;
  std::vector<std::string> known = EventIDs();
  auto* usedUp = QueryInterface<IUsedUpEventIDs>(*object_);
  if (usedUp != nullptr) known.push_back(usedUp->HighestUsedUp());
  event.EventID = book_.NewEventID(known);
  return plugin_->InputAddEvent(event);
}

std::int32_t PluginHost::ModifyEvent(const std::string& eventID) {
  HostInputEvent event;
  event.EventID = eventID;
  return plugin_->InputModifyEvent(event);
}

std::int32_t PluginHost::DeleteEvent(const std::string& eventID) {
  HostInputEvent event;
  event.EventID = eventID;
  const std::int32_t result = plugin_->InputDeleteEvent(event);
  if (ListDiffersFromMap()) {
    log_.Write(LogLevel::Warning,
               "Event " + eventID +
                   " is still in the event map, which could not be written; it comes back, "
                   "with what it does. Delete it again then.");
  } else if (result == kInputDone) {
    book_.Forget(eventID);
  }
  return result;
}

bool PluginHost::ListDiffersFromMap() const {
  return catalogue_ != nullptr && catalogue_->ListDiffersFromMap();
}

void PluginHost::TriggerInputEvent(HostInputEvent& objInputEvent) {
  RaisedEvent event = Describe(objInputEvent.EventID);
  if (const auto* command = std::get_if<std::string>(&objInputEvent.EventCommand)) event.Command = *command;
  CallOutputs(&EventOutput::EventRaised, event);
}

void PluginHost::ReportKey(PressStage stage, const HeardKey& key) {
  lastKey_ = key;
  CallOutputs(&EventOutput::KeyChanged, stage, key);
}

void PluginHost::KeyPressed(const HeardKey& key) { ReportKey(PressStage::Pressed, key); }
void PluginHost::KeyHeld(const HeardKey& key) { ReportKey(PressStage::Held, key); }
void PluginHost::KeyReleased(const HeardKey& key) { ReportKey(PressStage::Released, key); }

void PluginHost::SignalHeard(const HeardSignal& signal) { CallOutputs(&EventOutput::SignalHeard, signal); }

void PluginHost::TriggerInputErrorCondition(HostErrorRecord& objErr, bool& /*blnStopping*/) {
  CallOutputs(&EventOutput::ErrorReported, objErr);
}

}  // namespace keplo::host
