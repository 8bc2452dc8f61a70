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
/// @throws Refused if none is named
broker::BrokerSettings RequireBroker(const std::filesystem::path& appPath);

/// Tells a broker what a monitor hears, as a host does, and sends what the broker asks for.
class BrokerTelling {
 public:
  /// @param mod, station, log outlive it
  /// @throws Refused without a broker
  BrokerTelling(KeploMod& mod, Station& station, const Log& log);

  /// Readable while there is something to serve.
  int WakeDescriptor() const { return wakeup_.Number(); }
  /// Between two ticks: tells changed events, logs what the connection reports, sends.
  void Serve();
  /// Waits for the broker, so that what a recording plays from now on is told; a little while at most.
  void WaitUntilUp();

  void Tell(KeyChange change, const KeyPress& key);
  void Tell(const RaisedEvent& event);
  void Tell(const TickReport& tick);

 private:
  broker::Bridge::Uses Uses();
  void Send(const broker::SendRequest& request);
  void TellEvents();

  KeploMod& mod_;
  Station& station_;
  const Log& log_;
  Descriptor wakeup_;
  std::unique_ptr<broker::Bridge> bridge_;
  broker::KeyStages stages_;
  std::optional<std::uint64_t> told_;  // state of the list of events that the broker has been told
};

}  // namespace keplo::cli
