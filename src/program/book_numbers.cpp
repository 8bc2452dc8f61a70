#include "program/book_numbers.h"

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>

#include "disk/json_file.h"
#include "event_id.h"
#include "failure.h"

namespace keplo {

namespace {

/// The number stored for the next event; 0 if there is no valid one.
std::int64_t NextOf(const nlohmann::json& book) {
  const auto next = book.find("next_event_id");
  if (next == book.end() || !next->is_number_integer()) return 0;
  const auto number = next->get<std::int64_t>();
  return number < kEndOfEventNumbers ? number : 0;
}

}  // namespace

std::int64_t NumberAfter(const std::string& eventID) {
  const auto number = NumberOfEventID(eventID);
  return number ? *number + 1 : 0;
}

std::int64_t FirstFreeNumber(const nlohmann::json& book) {
  std::int64_t free = NextOf(book);
  const auto events = book.find("events");
  if (events == book.end() || !events->is_object()) return free;
  for (const auto& event : events->items()) free = std::max(free, NumberAfter(event.key()));
  return free;
}

std::int64_t FirstFreeNumberOfBook(const std::filesystem::path& appPath) {
  const std::filesystem::path file = appPath / kEventBookFile;
  std::string text;
  try {
    text = ReadJsonFile(file);
  } catch (const Failure& failure) {
    if (failure.Number() == ENOENT) return 0;
    throw;
  }
  try {
    return FirstFreeNumber(ParseJsonObject(text));
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), file.string() + " " + failure.what());
  }
}

}  // namespace keplo
