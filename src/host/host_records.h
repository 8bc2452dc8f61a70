#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace keplo {

/// A value with a type chosen at run time; monostate is the empty variant.
using HostVariant = std::variant<std::monostate, bool, std::int32_t, double, std::string>;

/// Passed to the host when an event is raised, and by the host when the user adds, edits or deletes an event.
/// Only the host assigns the EventID, a text that no other event has or had. A raised event has EventID and
/// EventCommand; IEventCatalogue has the rest.
struct HostInputEvent {
  std::string EventDate;  // not used
  HostVariant EventCommand;
  std::string EventDescription;
  std::string EventTag;  // not used
  std::string EventName;
  std::string EventID;
};

/// A failure, as the plug-in reports it to the host.
struct HostErrorRecord {
  std::string ErrorDetail;     // such as the SQL statement that failed; usually empty
  std::string ErrorDate;       // "07-Nov-2002 16:31:11"
  std::string ErrorProcedure;  // the failing operation
  std::string ErrorSource;     // the failing class
  std::int32_t ErrorNumber = 0;
  std::string ErrorDescription;
};

}  // namespace keplo
