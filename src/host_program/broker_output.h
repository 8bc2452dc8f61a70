#pragma once

#include <QTimer>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "broker/bridge.h"
#include "broker/key_stages.h"
#include "broker/settings_watch.h"
#include "host_program/host_log.h"
#include "host_program/plugin_host.h"

namespace keplo::host {

/// Tells the events of a plug-in to the broker that broker.json names, and has the plug-in send what the
/// broker asks for. The file may come, change and go while the host runs. Everything but the connection
/// itself runs on the thread of the event loop.
class BrokerOutput final : private EventOutput {
 public:
  /// A broker that cannot be used is logged, and the host goes on without it.
  BrokerOutput(std::filesystem::path appPath, PluginHost& host, const HostLog& log);
  ~BrokerOutput() override;
  BrokerOutput(const BrokerOutput&) = delete;
  BrokerOutput& operator=(const BrokerOutput&) = delete;

  /// Reads the settings again, and connects again if they are others. Settings that cannot be used leave the
  /// broker as it is.
  void ReadAgain();

 private:
  void Look();
  /// Has the broker forget what stands under topics that are no more, or says how to.
  void Forget(const broker::BrokerSettings& now);
  void Connect(const broker::BrokerSettings& settings);
  void Disconnect();
  broker::Bridge::Uses Uses();
  void EventRaised(const RaisedEvent& event) override;
  void KeyChanged(PressStage stage, const HeardKey& key) override;
  void SignalHeard(const HeardSignal& signal) override;
  void TellEvents();
  void Send(const broker::SendRequest& request);

  const std::filesystem::path appPath_;
  PluginHost& host_;
  const HostLog& log_;
  QObject context_;  // of what the connection posts; what comes after its end is dropped
  broker::SettingsWatch watch_;
  std::optional<broker::BrokerSettings> settings_;
  std::optional<std::uint64_t> told_;       // revision of the events that the broker has been told
  std::unique_ptr<broker::Bridge> bridge_;  // none without a broker
  std::unique_ptr<broker::KeyStages> stages_;
  QTimer look_;
};

}  // namespace keplo::host
