#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "keplo_mod.h"
#include "line/held_signals.h"
#include "line/open_line.h"
#include "line/port_map.h"

namespace keplo::cli {

/// An open port, for commands that need a device. A signal that ends the program is delayed until the
/// settings of the port have been restored; calls of the line return early then.
class LiveLine {
 public:
  /// @param mod receives the settings of its configuration
  /// @param port overrides that of the settings
  /// @throws Refused, with the reason, if the port does not open
  LiveLine(KeploMod& mod, std::optional<std::int32_t> port, const LineOptions& options = {});

  Win32Ser& Line() { return *line_.Line; }
  /// The port, for the user: "COM 1".
  const std::string& Name() const { return name_; }
  /// Why the device has stopped working; empty while it works.
  std::string WhyNot() const { return line_.Device->WhyNot(); }
  LineLosses Losses() const { return line_.Device->Losses(); }
  /// The open device.
  DeviceLine& Device() { return *line_.Device; }
  /// Takes a signal that would end the program, for commands that end properly by themselves.
  /// @return whether a signal had arrived
  bool TakeStop();

 private:
  HeldSignals signals_;  // first, so that it is destroyed last
  std::string name_;
  OpenedLine line_;
};

/// The device of a port on this machine; none if it has none.
std::optional<MappedPort> PortOf(const KeploMod& mod, std::int32_t port);

}  // namespace keplo::cli
