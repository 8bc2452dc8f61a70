#pragma once

#include <functional>
#include <string>

#include "host/host_records.h"
#include "signal/analysis_choice.h"
#include "signal/win32_ser.h"
#include "ui/list_view.h"

namespace keplo {

struct CfgStore;
struct Settings;

/// How the dispatch of a code ended.
enum class DispatchEnd {
  NotReached,    // there was no code
  NotStored,     // the code belongs to no learned command
  NoZoneAnswer,  // a row requires a zone, but the zone hardware did not answer
  OtherZone,     // a row requires a zone other than the one that the command came from
  Walked         // all rows were visited
};

struct DispatchReport {
  DispatchEnd Ended = DispatchEnd::NotReached;
  std::string Reference;  // protocol&command, once the command is known
  int Raised = 0;         // number of input events
};

/// Finds the learned command of a code and raises an input event for each activated row of the event list
/// that is bound to it. A zone that does not match ends the walk; later rows are not visited.
/// @param code digits without the leading G
/// @param readBy the analysis that read the code; see FindCommand
/// @param event reused for every row
/// @param raise calls the host's handler
/// @param report updated during the dispatch
void DispatchCode(const std::string& code, Analysis readBy, const std::string& cfgText,
                  const Settings& settings, const ui::ListView& list, Win32Ser& line, HostInputEvent& event,
                  const std::function<void(HostInputEvent&)>& raise, DispatchReport& report);

}  // namespace keplo
