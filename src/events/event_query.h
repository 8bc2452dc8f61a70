#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace keplo {

/// The statement that reads the whole event table.
inline constexpr std::string_view kSelectAllEvents = "select * from colclsKeploEvents";

/// Which rows of the event table a live result set contains.
struct EventQuery {
  std::optional<std::string> EventID;  // none for all rows
};

/// "select * from colclsKeploEvents"
inline EventQuery AllEvents() { return {}; }

/// "select * from colclsKeploEvents where EventID = '" + eventID + "'". The ID may have any characters, since
/// it is passed to the database as a parameter.
inline EventQuery EventWithID(std::string_view eventID) { return {std::string(eventID)}; }

}  // namespace keplo
