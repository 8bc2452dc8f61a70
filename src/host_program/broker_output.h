#pragma once

#include <QTimer>
#include <filesystem>
#include <memory>
#include <string>

#include "broker/bridge.h"
#include "host_program/host_log.h"
#include "host_program/plugin_host.h"

namespace keplo::host {

/// Tells the events of a plug-in to a broker, and has the plug-in send what the broker asks for. Everything
/// but the connection itself runs on the thread of the event loop.
class BrokerOutput {
 public:
  /// What broker.json of the application path asks for. A broker that cannot be used is logged, and the host
  /// goes on without it.
  /// @return none without a broker
  static std::unique_ptr<BrokerOutput> Make(const std::filesystem::path& appPath, PluginHost& host,
                                            const HostLog& log);

  BrokerOutput(const broker::BrokerSettings& settings, const std::string& identity, PluginHost& host,
               const HostLog& log);
  ~BrokerOutput();
  BrokerOutput(const BrokerOutput&) = delete;
  BrokerOutput& operator=(const BrokerOutput&) = delete;

 private:
  broker::Bridge::Uses Uses();
  void TellEvents();
  void Send(const broker::SendRequest& request);

  PluginHost& host_;
  const HostLog& log_;
  QObject context_;  // of what the connection posts; what comes after its end is dropped
  broker::Bridge bridge_;
  QTimer look_;
};

}  // namespace keplo::host
