#include "shell/status_panel.h"

#include <string>

namespace keplo {

namespace {

std::string_view YesOrNo(bool yes) { return yes ? "YES" : "NO"; }

}  // namespace

void StatusPanel::ShowComPort(std::int32_t port) { CtlComPort.SetText("COM " + std::to_string(port)); }

void StatusPanel::ShowPortStatus(bool open) {
  CtlPortStatus.SetText(open ? "AVAILABLE" : "UNAVAILABLE");
  CtlPortStatus.SetBackColour(open ? ui::kGreen : ui::kRed);
}

void StatusPanel::ShowMonitoring(bool on) { RcvActivated.SetText(YesOrNo(on)); }

void StatusPanel::ShowVexil(bool available) { VexilAvailable.SetText(YesOrNo(available)); }

void StatusPanel::ShowInterfaceType(std::int32_t interfaceType) {
  static constexpr std::array<std::string_view, 2> kOutputs = {"DTR", "TxD"};
  const bool mouse = interfaceType >= 8;
  const std::int32_t output = mouse ? interfaceType - 8 : interfaceType;
  if (output != 0 && output != 1) return;
  std::string text = mouse ? "IRMouse / " : "DCDStandard / ";
  text += kOutputs.at(static_cast<std::size_t>(output));
  InterfaceType.SetText(text);
}

}  // namespace keplo
