#pragma once

#include <cstdint>

#include "signal/analysis_choice.h"

namespace keplo {

/// The settings of the interface, from [General] of the configuration file.
struct Settings {
  std::int32_t ComPortNr = 0;
  std::int16_t ProtocolIndex = 0;
  std::int16_t ProcDelay = 0;
  std::int32_t InterfaceType = 0;  // 8 x receiver + output: 0, 1, 8 or 9
  bool BeepOn = false;
  std::int16_t VexilMode = 0;     // 0: no zone hardware; 1 to 8: the selected zone
  std::int16_t ReceiverKind = 0;  // 0 DCDStandard, 1 IRMouse; follows InterfaceType
  std::int16_t PluginMode = 0;    // 1 when the shell opened the main window

  /// Which of the two analyses reads captures.
  keplo::Analysis Analysis = keplo::Analysis::First;
};

/// Receiver of an interface type: 1 for IRMouse, 0 for DCDStandard.
constexpr std::int16_t ReceiverKindOf(std::int32_t interfaceType) { return interfaceType >= 8 ? 1 : 0; }

}  // namespace keplo
