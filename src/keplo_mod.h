#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "config/cfg_store.h"
#include "config/settings.h"
#include "events/data.h"
#include "signal/monitored_press.h"
#include "signal/protocol_params.h"

namespace keplo {

/// Major, minor and revision of the program, joined by points.
extern const std::string VersionText;

/// Values of ProtocolFormMode.
inline constexpr std::int16_t kNewProtocolMode = 0, kEditProtocolMode = 1;

/// The state shared by shell and window. Whoever runs the program creates it and passes it by reference.
struct KeploMod {
  /// @param appPath the folder of keplo.cfg and of the event database
  KeploMod(const std::filesystem::path& appPath, FileSystem& files);
  /// As above, with the real file system.
  explicit KeploMod(const std::filesystem::path& appPath);

  std::filesystem::path AppPath;
  keplo::Settings Settings;
  CfgStore Store;
  keplo::ProtocolParams ProtocolParams;
  SignalState Signal;
  std::int16_t ProtocolFormMode = kNewProtocolMode;  // what the protocol dialog is loaded for
  bool Rc5Toggle = false;                            // toggle digit of the last RC5 transmission
  std::unique_ptr<Data> modData;                     // created by the control
};

}  // namespace keplo
