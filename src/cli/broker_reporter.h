#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "broker/bridge.h"
#include "broker/key_stages.h"
#include "disk/descriptor.h"
#include "keplo_mod.h"
#include "program/raised_event.h"
#include "station/station.h"

namespace keplo::cli {

/// The settings of the broker.
/// @throws Refused if there are none
broker::BrokerSettings RequireBroker(const std::filesystem::path& appPath);

/// Publishes what a monitor receives to a broker, and sends what the broker requests, as a host does.
class BrokerReporter {
 public:
  /// @param mod, station, log must outlive this object
  /// @throws Refused without a broker
  BrokerReporter(KeploMod& mod, Station& station, const Log& log);

  /// Readable while Serve has something to do.
  int WakeDescriptor() const { return wakeup_.Number(); }
  /// Call this between ticks: publishes changed events, logs reports of the connection, and sends.
  void Serve();
  /// Waits a few seconds for the broker, so that a recording is not played before it is connected.
  void WaitUntilUp();

  void Publish(KeyChange change, const KeyPress& key);
  void Publish(const RaisedEvent& event);
  void Publish(const TickReport& tick);

 private:
  broker::Bridge::Uses Uses();
  void Send(const broker::SendRequest& request);
  void PublishEvents();

  KeploMod& mod_;
  Station& station_;
  const Log& log_;
  Descriptor wakeup_;
  std::unique_ptr<broker::Bridge> bridge_;
  broker::KeyStages stages_;
  std::optional<std::uint64_t> published_;  // ListView::Changes() of the published list of events
};

}  // namespace keplo::cli
