#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "keplo_mod.h"
#include "line/held_signals.h"
#include "line/open_line.h"
#include "line/port_map.h"

namespace keplo::cli {

/// The port of the settings, or another one, opened for a command that needs its device. A signal that ends
/// the program waits until the port is as it was found; calls of the line end early then.
class LiveLine {
 public:
  /// @param port of this run in place of that of the settings
  /// @param mod takes the settings of its file
  /// @throws Refused if the port does not open, with the reason
  LiveLine(KeploMod& mod, std::optional<std::int32_t> port, const LineOptions& options = {});

  Win32Ser& Line() { return *line_.Line; }
  /// The port, for a person: "COM 1".
  const std::string& Name() const { return name_; }
  /// Why the device does not work any more; empty while it does.
  std::string WhyNot() const { return line_.Device->WhyNot(); }
  LineLosses Losses() const { return line_.Device->Losses(); }
  /// The device itself, opened.
  DeviceLine& Device() { return *line_.Device; }
  /// Takes the signal that would end the program, for one that ends in order by itself.
  /// @return whether one has come
  bool TakeStop();

 private:
  HeldSignals signals_;  // goes last
  std::string name_;
  OpenedLine line_;
};

/// What stands behind a port on this machine; none if nothing does.
std::optional<MappedPort> PortOf(const KeploMod& mod, std::int32_t port);

}  // namespace keplo::cli
