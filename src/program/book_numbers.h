#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace keplo {

/// Where the host keeps what each event does, in the application path unless it is told otherwise.
inline constexpr const char* kEventBookFile = "host.json";

/// The number that comes after an EventID; 0 for one that is no number, or one so high that somebody made it
/// up: to go on from there could run out of numbers.
std::int64_t NumberAfter(const std::string& eventID);

/// The first number that a book of events leaves free for a new event: what it has kept for an EventID must
/// not become another event's.
/// @param book a JSON object
std::int64_t FirstFreeNumber(const nlohmann::json& book);

/// The same for the book in an application path; 0 if there is none.
/// @throws Failure for a book that cannot be read
std::int64_t FirstFreeNumberOfBook(const std::filesystem::path& appPath);

}  // namespace keplo
