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
  NoZoneAnswer,  // a row asked for a zone and the zone hardware gave none
  OtherZone,     // a row asked for another zone than the command came from
  Walked         // every row was looked at
};

struct DispatchReport {
  DispatchEnd Ended = DispatchEnd::NotReached;
  std::string Reference;  // protocol&command, once the command is known
  int Raised = 0;         // input events
};

/// Finds a code among the learned commands and raises an input event for each activated row of the event
/// list that is bound to it. A zone that does not match ends the walk: rows further down are not looked at.
/// @param code digits without the leading G
/// @param readBy the analysis that the code comes from; what the second look read is compared whole
/// @param event filled and handed out again for each row
/// @param raise runs the host's handler
/// @param report filled in as the dispatch goes
void DispatchCode(const std::string& code, Analysis readBy, const std::string& cfgText,
                  const Settings& settings, const ui::ListView& list, Win32Ser& line, HostInputEvent& event,
                  const std::function<void(HostInputEvent&)>& raise, DispatchReport& report);

}  // namespace keplo
