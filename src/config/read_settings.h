#pragma once

#include <string_view>

#include "config/cfg_store.h"
#include "config/settings.h"

namespace keplo {

/// How far the settings could be read.
struct SettingsReading {
  std::string_view Missing;  // the first text that was not found, such as "ITYPE="
  int After = 1;             // the position from which it was searched

  bool Complete() const { return Missing.empty(); }
};

/// Reads the settings from [General], each key searched from after the one before it. At the first that is
/// not found the reading stops: what was read stays, the rest is as it was. ANALYSIS= may be missing, and
/// counts inside [General] only: 1 is the second look, all else the first analysis.
SettingsReading ReadSettings(const CfgStore& store, Settings& settings);

}  // namespace keplo
