#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "ui/label.h"

namespace keplo {

/// The five value fields of the control's display, with their texts before the start-up sets them.
struct StatusPanel {
  static constexpr std::string_view kHeading = "Infrared Interface Parameters ";
  /// Fixed labels, from top to bottom; the value fields stand in the same order below.
  static constexpr std::array<std::string_view, 5> kRowLabels = {
      "COM Port:", "Port Status:", "Monitor activated", "Vexil available", "Interface Type"};

  ui::Label CtlComPort{"CtlComPort"};
  ui::Label CtlPortStatus{"CtlPortStatus"};
  ui::Label RcvActivated{"RcvActivated"};
  ui::Label VexilAvailable{"VexilAvailable"};
  ui::Label InterfaceType{"InterfaceType"};

  std::array<ui::Label*, 5> Values() {
    return {&CtlComPort, &CtlPortStatus, &RcvActivated, &VexilAvailable, &InterfaceType};
  }

  void ShowComPort(std::int32_t port);
  void ShowPortStatus(bool open);
  void ShowMonitoring(bool on);
  void ShowVexil(bool available);
  /// An interface type whose output is neither DTR nor TxD leaves the field as it was.
  void ShowInterfaceType(std::int32_t interfaceType);
};

}  // namespace keplo
