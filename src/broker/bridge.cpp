#include "broker/bridge.h"

#include <utility>

#include "failure.h"

namespace keplo::broker {

namespace {

LinkPurpose PurposeOf(const BrokerSettings& settings, const Topics& topics) {
  LinkPurpose purpose;
  purpose.ClientId = settings.ClientId.empty() ? topics.Node() : settings.ClientId;
  if (settings.Send) purpose.Topics = {topics.Send()};
  purpose.Up = "Connected to the broker at " + NameOf(settings) + ".";
  purpose.WhileAway = "key presses are not told to it";
  return purpose;
}

}  // namespace

Bridge::Bridge(BrokerSettings settings, const std::string& identity, Uses uses)
    : settings_(std::move(settings)),
      topics_(settings_, identity),
      uses_(std::move(uses)),
      refused_("A request on " + topics_.Send() + " to send a signal",
               "requests on " + topics_.Send() + " to send a signal",
               [this](const std::string& text) {
                 uses_.Log({/*IsTrouble=*/true, text});
               }),
      link_(settings_, identity, PurposeOf(settings_, topics_), uses_.Wake) {}

Bridge::~Bridge() {
  link_.Finish();
  LogReports();
}

void Bridge::LogReports() {
  for (const Report& report : link_.TakeReports()) uses_.Log(report);
}

void Bridge::SetEvents(std::vector<AnnouncedEvent> events) {
  if (std::exchange(announced_, true) && events == events_) return;
  events_ = std::move(events);
  link_.SetDevice(DeviceMessage(topics_, settings_, events_));
}

void Bridge::Publish(KeyEvent event) {
  const auto kind = event.Stage == KeyStage::Press ? News::Kind::Press : News::Kind::AfterPress;
  link_.Publish({std::move(event), kind});
}

void Bridge::Publish(HeardSignal signal) {
  if (!settings_.Signals || signal.Timings.empty() || !IsWithinRate(signals_, kMostSignalsPerSecond)) return;
  link_.Publish({std::move(signal), News::Kind::Signal});
}

bool Bridge::IsWithinRate(std::deque<Clock::time_point>& recent, std::size_t most) {
  const Clock::time_point now = Clock::now();
  while (!recent.empty() && now - recent.front() >= std::chrono::seconds(1)) recent.pop_front();
  if (recent.size() >= most) return false;
  recent.push_back(now);
  return true;
}

void Bridge::Serve() {
  LogReports();
  for (const Incoming& message : link_.TakeIncoming()) Handle(message);
  refused_.Count("more came than can be taken", link_.TakeOverflow());
}

void Bridge::Handle(const Incoming& message) {
  if (message.Topic != topics_.Send()) return;
  try {
    if (message.Retained) throw Failure(1, "it is retained, so that nobody knows how old it is");
    const SendRequest request = ParseSendRequest(message.Payload);
    if (!IsWithinRate(requests_, kMostRequestsPerSecond)) throw Failure(1, "more than two came in a second");
    uses_.Send(request);
  } catch (const Failure& failure) {
    refused_.Count(failure.what());
  }
}

}  // namespace keplo::broker
