#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "ui/label.h"

namespace keplo {

/// The five value fields of the control's display; their initial texts are their names.
struct StatusPanel {
  static constexpr std::string_view kHeading = "Infrared Interface Parameters ";
  /// The labels of the value fields, in the same order.
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
  /// Does nothing for an interface type whose output is neither DTR nor TxD.
  void ShowInterfaceType(std::int32_t interfaceType);
};

}  // namespace keplo
