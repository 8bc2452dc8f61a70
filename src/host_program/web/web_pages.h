#pragma once

#include <QHttpServer>
#include <QString>
#include <cstdint>
#include <string>
#include <vector>

#include "host_program/plugin_host.h"

namespace keplo::host {

/// The host's web pages: an index at /, and the plug-in's page under its name.
class WebPages {
 public:
  /// Path of the plug-in's page.
  static constexpr const char* kPluginPath = "/InputKeplo";

  explicit WebPages(PluginHost& host);

  /// Starts serving, from the event loop.
  /// @param port 0 for any free port
  /// @param names additional valid values of the Host header
  /// @return the URL of the index for the user; with a remark if all addresses are served
  /// @throws Failure if the address cannot be used
  std::string Serve(const std::string& address, std::uint16_t port, const std::vector<std::string>& names);

 private:
  QByteArray Index() const;
  QByteArray LastKey() const;
  QByteArray Presses() const;
  QByteArray PluginPage(const QHttpServerRequest& request) const;

  PluginHost& host_;
  QHttpServer server_;
};

}  // namespace keplo::host
