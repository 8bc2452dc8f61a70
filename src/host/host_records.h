#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace keplo {

/// A value that carries its own type, as the host's interface passes it; monostate is the empty variant.
using HostVariant = std::variant<std::monostate, bool, std::int32_t, double, std::string>;

/// What the plug-in tells the host when an event of the map fires, and what the host hands in when the
/// user adds, changes or deletes an event. The host alone gives out EventID, a text that no other event has
/// or had. A fired event carries EventID and EventCommand; IEventCatalogue knows the rest.
struct HostInputEvent {
  std::string EventDate;  // stays empty
  HostVariant EventCommand;
  std::string EventDescription;
  std::string EventTag;  // the plug-in neither reads nor writes it
  std::string EventName;
  std::string EventID;
};

/// One failure, as the plug-in reports it to the host.
struct HostErrorRecord {
  std::string ErrorDetail;     // context of the failure, such as the statement that failed; mostly empty
  std::string ErrorDate;       // "07-Nov-2002 16:31:11"
  std::string ErrorProcedure;  // the failing operation
  std::string ErrorSource;     // the failing class
  std::int32_t ErrorNumber = 0;
  std::string ErrorDescription;
};

}  // namespace keplo
