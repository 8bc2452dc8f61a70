#pragma once

#include <string_view>

#include "config/cfg_store.h"
#include "config/settings.h"

namespace keplo {

/// How much of the settings could be read.
struct SettingsReading {
  std::string_view Missing;  // the first text that was not found, such as "ITYPE="
  int After = 1;             // the position from which it was searched

  bool Complete() const { return Missing.empty(); }
};

/// Reads the settings from [General]. The search for each key begins after the previous one and stops at the
/// first that is missing; settings not read by then keep their values. ANALYSIS= may be missing, and counts
/// only inside [General]: 1 is the second look, anything else the first analysis.
SettingsReading ReadSettings(const CfgStore& store, Settings& settings);

}  // namespace keplo
