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

  /// Serves from now on, from the event loop.
  /// @param port 0 for any free one
  /// @param names further values of a Host header that are the host's own
  /// @return the address of the index for a person; where every address is served, the one for this machine
  /// and what else there is
  /// @throws Failure if the address cannot be taken
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
