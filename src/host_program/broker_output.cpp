#include "host_program/broker_output.h"

#include <QMetaObject>
#include <utility>

#include "broker/identity.h"
#include "broker/moved_device.h"
#include "failure.h"
#include "program/local_time.h"

namespace keplo::host {

BrokerOutput::BrokerOutput(std::filesystem::path appPath, PluginHost& host, const HostLog& log)
    : appPath_(std::move(appPath)), host_(host), log_(log), watch_(appPath_) {
  Reload();
  poll_.callOnTimeout([this] { Check(); });
  poll_.start(broker::SettingsWatch::kPollTime);
}

BrokerOutput::~BrokerOutput() { Disconnect(); }

void BrokerOutput::Check() {
  if (watch_.TakeChange()) Reload();
  if (!bridge_) return;
  // If the plug-in does not have a revision, the events are always published.
  const auto revision = host_.EventsRevision();
  if (revision && revision == published_) return;
  published_ = revision;
  PublishEvents();
}

void BrokerOutput::Reload() {
  static_cast<void>(watch_.TakeChange());
  try {
    auto settings = broker::ReadBrokerSettings(appPath_);
    if (settings == settings_) return;
    if (settings && settings_) Forget(*settings);
    Disconnect();
    settings_ = std::move(settings);
    if (settings_) Connect(*settings_);
  } catch (const Failure& failure) {
    if (!bridge_) settings_.reset();
    log_.Write(LogLevel::Warning,
               std::string(failure.what()) + (bridge_ ? " Until then the broker stays as it was."
                                                      : " Until then no broker is told of events."));
  }
}

void BrokerOutput::Forget(const broker::BrokerSettings& now) {
  const bool moves = broker::MovesDevice(*settings_, now);
  if (bridge_->IsUp()) return bridge_->ForgetAtEnd({moves, settings_->Prefix != now.Prefix});
  if (!moves) return;
  log_.Write(LogLevel::Warning, "The device stays in Home Assistant under the topics of " +
                                    settings_->DiscoveryPrefix +
                                    ", as its broker is away. When it is back, take it out with: " +
                                    broker::ForgetCommand(*settings_, now, appPath_));
}

void BrokerOutput::Connect(const broker::BrokerSettings& settings) {
  bridge_ = std::make_unique<broker::Bridge>(settings, broker::IdentityOf(appPath_), Uses());
  stages_ =
      std::make_unique<broker::KeyStages>([this](const broker::KeyEvent& event) { bridge_->Publish(event); });
  host_.AddOutput(*this);
  published_ = host_.EventsRevision();
  PublishEvents();
}

void BrokerOutput::Disconnect() {
  host_.RemoveOutput(*this);
  stages_.reset();
  bridge_.reset();
  settings_.reset();
}

broker::Bridge::Uses BrokerOutput::Uses() {
  return {[this] {
            QMetaObject::invokeMethod(
                &context_,
                [this] {
                  if (bridge_) bridge_->Serve();
                },
                Qt::QueuedConnection);
          },
          [this](const broker::SendRequest& request) { Send(request); },
          [this](const broker::Report& report) {
            log_.Write(report.IsTrouble ? LogLevel::Warning : LogLevel::Notice, report.Text);
          }};
}

void BrokerOutput::EventRaised(const RaisedEvent& event) {
  stages_->Raised({{}, event.EventID, event.EventName, event.Command, event.Zone, {}, 1});
}

void BrokerOutput::SignalHeard(const HeardSignal& signal) {
  bridge_->Publish(broker::HeardSignal{signal.Timings, std::nullopt, signal.Protocol, signal.Code,
                                       signal.Command, signal.Zone, LocalTime()});
}

void BrokerOutput::KeyChanged(PressStage stage, const HeardKey& key) {
  if (stage == PressStage::Pressed) return stages_->Pressed(key.Place, key.Zone);
  if (stage == PressStage::Held) return stages_->Held(key.Place, key.Count);
  stages_->Released(key.Place, key.Count);
}

void BrokerOutput::PublishEvents() {
  std::vector<broker::AnnouncedEvent> events;
  for (const RaisedEvent& event : host_.ActivatedEvents()) {
    events.push_back({event.EventID, event.EventName, event.Command});
  }
  bridge_->SetEvents(std::move(events));
}

void BrokerOutput::Send(const broker::SendRequest& request) {
  const std::string refusal = request.Timings.empty() ? host_.SendCommand(request.Command)
                                                      : host_.SendSignal(request.Timings, request.Modulation);
  if (!refusal.empty()) throw Failure(1, refusal);
}

}  // namespace keplo::host
