#pragma once

#include <array>
#include <cstdint>

namespace keplo {

/// Name of the database file in the application path. It is an SQLite file; the extension is historical.
inline constexpr const char* kDatabaseFile = "inputKeplo.mdb";

/// The application_id that distinguishes event databases from other SQLite files: "Kepl" in ASCII.
inline constexpr std::int32_t kApplicationID = 0x4B65706C;

/// The user_version of the current table layout.
inline constexpr std::int32_t kFormatVersion = 1;

/// The columns of the table colclsKeploEvents, in the order in which rows are read and written.
inline constexpr std::array kEventColumns = {"EventID",   "EventName", "EventDescription",
                                             "IRCommand", "Enabled",   "Zone"};

}  // namespace keplo
