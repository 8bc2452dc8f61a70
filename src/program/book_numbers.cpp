#include "program/book_numbers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <nlohmann/json.hpp>

#include "disk/json_file.h"
#include "failure.h"

namespace keplo {

namespace {

constexpr std::int64_t kEndOfNumbers = 1'000'000'000'000'000;

/// The number that the book has for the next event; 0 if it has none that can be.
std::int64_t NextOf(const nlohmann::json& book) {
  const auto next = book.find("next_event_id");
  if (next == book.end() || !next->is_number_integer()) return 0;
  const auto number = next->get<std::int64_t>();
  return number < kEndOfNumbers ? number : 0;
}

}  // namespace

std::int64_t NumberAfter(const std::string& eventID) {
  std::int64_t number = 0;
  const char* const end = eventID.data() + eventID.size();
  const auto [stop, error] = std::from_chars(eventID.data(), end, number);
  return error == std::errc() && stop == end && number < kEndOfNumbers ? number + 1 : 0;
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
