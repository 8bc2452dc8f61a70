#include "host_program/broker_output.h"

#include <QMetaObject>
#include <chrono>
#include <utility>

#include "broker/identity.h"
#include "failure.h"
#include "program/local_time.h"

namespace keplo::host {

namespace {

/// Changes of the event map are to be seen within a second; the plug-in itself looks every 400 ms.
constexpr std::chrono::milliseconds kLookAtEvents{400};

broker::KeyStage StageOf(PressStage stage) {
  switch (stage) {
    case PressStage::Pressed:
      return broker::KeyStage::Press;
    case PressStage::Held:
      return broker::KeyStage::Hold;
    case PressStage::Released:
      return broker::KeyStage::Release;
  }
  return broker::KeyStage::Press;
}

}  // namespace

std::unique_ptr<BrokerOutput> BrokerOutput::Make(const std::filesystem::path& appPath, PluginHost& host,
                                                 const HostLog& log) {
  try {
    const auto settings = broker::ReadBrokerSettings(appPath);
    if (!settings) return nullptr;
    return std::make_unique<BrokerOutput>(*settings, broker::IdentityOf(appPath), host, log);
  } catch (const Failure& failure) {
    log.Write(LogLevel::Warning, std::string(failure.what()) + " Until then no broker is told of events.");
    return nullptr;
  }
}

BrokerOutput::BrokerOutput(const broker::BrokerSettings& settings, const std::string& identity,
                           PluginHost& host, const HostLog& log)
    : host_(host), log_(log), bridge_(settings, identity, Uses()) {
  host_.OnStage = [this](PressStage stage, const RaisedEvent& event, int count) {
    bridge_.Tell(broker::KeyEvent{StageOf(stage), event.EventID, event.EventName, event.Command, event.Zone,
                                  event.Time, count});
  };
  host_.OnSignal = [this](const HeardSignal& signal) {
    bridge_.Tell(broker::HeardSignal{signal.Timings, std::nullopt, signal.Protocol, signal.Code,
                                     signal.Command, signal.Zone, LocalTime()});
  };
  look_.callOnTimeout([this] { TellEvents(); });
  look_.start(kLookAtEvents);
  TellEvents();
}

BrokerOutput::~BrokerOutput() {
  host_.OnStage = nullptr;
  host_.OnSignal = nullptr;
}

broker::Bridge::Uses BrokerOutput::Uses() {
  return {[this] {
            QMetaObject::invokeMethod(
                &context_, [this] { bridge_.Serve(); }, Qt::QueuedConnection);
          },
          [this](const broker::SendRequest& request) { Send(request); },
          [this](LogLevel level, const std::string& text) { log_.Write(level, text); }};
}

void BrokerOutput::TellEvents() {
  std::vector<broker::AnnouncedEvent> events;
  for (const RaisedEvent& event : host_.ActivatedEvents()) {
    events.push_back({event.EventID, event.EventName, event.Command});
  }
  bridge_.SetEvents(std::move(events));
}

void BrokerOutput::Send(const broker::SendRequest& request) {
  const std::string refusal = request.Timings.empty() ? host_.SendCommand(request.Command)
                                                      : host_.SendSignal(request.Timings, request.Modulation);
  if (!refusal.empty()) throw Failure(1, refusal);
}

}  // namespace keplo::host
