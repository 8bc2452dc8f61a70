#pragma once

#include <array>
#include <cstdint>

namespace keplo {

/// Name of the database file in the application path. The ending is historical; the file is SQLite.
inline constexpr const char* kDatabaseFile = "inputKeplo.mdb";

/// The application_id that tells an event database from other SQLite files: "Kepl" in ASCII.
inline constexpr std::int32_t kApplicationID = 0x4B65706C;

/// The user_version of the table as it is written here; a later layout takes the next number.
inline constexpr std::int32_t kFormatVersion = 1;

/// The columns of the table colclsKeploEvents, in the order in which rows are read and written.
inline constexpr std::array kEventColumns = {"EventID",   "EventName", "EventDescription",
                                             "IRCommand", "Enabled",   "Zone"};

}  // namespace keplo
