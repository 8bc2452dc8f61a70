#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace keplo {

/// The book of events, in which the host stores what each event does; by default in the application path.
inline constexpr const char* kEventBookFile = "host.json";

/// The number after an EventID; 0 if that is not a number, see NumberOfEventID.
std::int64_t NumberAfter(const std::string& eventID);

/// The first number that a book of events leaves free for a new event. A number in use must not be given to
/// another event, even if the first one no longer exists.
/// @param book a JSON object
std::int64_t FirstFreeNumber(const nlohmann::json& book);

/// The same for the book in an application path; 0 if there is none.
/// @throws Failure if the book cannot be read
std::int64_t FirstFreeNumberOfBook(const std::filesystem::path& appPath);

}  // namespace keplo
