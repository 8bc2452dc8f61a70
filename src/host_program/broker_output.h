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

/// Publishes the events of a plug-in to the broker of broker.json, and has the plug-in send what the broker
/// requests. The file may be created, changed and removed while the host runs. Everything but the connection
/// itself runs on the thread of the event loop.
class BrokerOutput final : private EventOutput {
 public:
  /// If the broker cannot be used, that is logged, and the host continues without it.
  BrokerOutput(std::filesystem::path appPath, PluginHost& host, const HostLog& log);
  ~BrokerOutput() override;
  BrokerOutput(const BrokerOutput&) = delete;
  BrokerOutput& operator=(const BrokerOutput&) = delete;

  /// Reads the settings again, and reconnects if they have changed. If they are invalid, the old ones stay in
  /// use.
  void Reload();

 private:
  void Check();
  /// Removes what was published under topics that are no longer used, or logs how to do so.
  void Forget(const broker::BrokerSettings& now);
  void Connect(const broker::BrokerSettings& settings);
  void Disconnect();
  broker::Bridge::Uses Uses();
  void EventRaised(const RaisedEvent& event) override;
  void KeyChanged(PressStage stage, const HeardKey& key) override;
  void SignalHeard(const HeardSignal& signal) override;
  void PublishEvents();
  void Send(const broker::SendRequest& request);

  const std::filesystem::path appPath_;
  PluginHost& host_;
  const HostLog& log_;
  QObject context_;  // receives calls posted by the connection; after its end they are dropped
  broker::SettingsWatch watch_;
  std::optional<broker::BrokerSettings> settings_;
  std::optional<std::uint64_t> published_;  // revision of the published events
  std::unique_ptr<broker::Bridge> bridge_;  // null without a broker
  std::unique_ptr<broker::KeyStages> stages_;
  QTimer poll_;
};

}  // namespace keplo::host
