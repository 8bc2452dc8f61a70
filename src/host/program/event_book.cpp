#include "host/program/event_book.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>

#include "failure.h"
#include "host/atomic_file.h"

namespace keplo::host {

namespace {

constexpr int kVersion = 1;

/// The number that an identifier is; 0 for one that is none.
long NumberOf(const std::string& eventID) {
  long number = 0;
  const char* const end = eventID.data() + eventID.size();
  const auto [stop, error] = std::from_chars(eventID.data(), end, number);
  return error == std::errc() && stop == end ? number : 0;
}

nlohmann::json ReadBook(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream && errno == ENOENT)
    return {{"version", kVersion}, {"next_event_id", 1}, {"events", nlohmann::json::object()}};
  if (!stream) throw Failure(errno, file.string() + " cannot be read: " + std::strerror(errno));
  auto book = nlohmann::json::parse(stream, nullptr, false);
  if (book.is_discarded() || !book.is_object()) {
    throw Failure(EINVAL, file.string() + " is not whole JSON. Mend it, or move it away to begin anew.");
  }
  if (book.value("version", nlohmann::json()) != kVersion) {
    throw Failure(EINVAL,
                  file.string() + " was not written by this version of keplo-host: \"version\" is not 1.");
  }
  if (!book.contains("events") || !book["events"].is_object()) {
    throw Failure(EINVAL,
                  file.string() + " has no object \"events\". Mend it, or move it away to begin anew.");
  }
  return book;
}

}  // namespace

EventBook::EventBook(std::filesystem::path file) : file_(std::move(file)), book_(ReadBook(file_)) {}

std::string EventBook::NewEventID(const std::vector<std::string>& known) {
  const auto kept = book_.find("next_event_id");
  long next = kept != book_.end() && kept->is_number_integer() ? std::max(1L, kept->get<long>()) : 1;
  for (const std::string& eventID : known) next = std::max(next, NumberOf(eventID) + 1);
  for (const auto& event : book_["events"].items()) next = std::max(next, NumberOf(event.key()) + 1);
  book_["next_event_id"] = next + 1;
  Save();
  return std::to_string(next);
}

nlohmann::json EventBook::ActionsOf(const std::string& eventID) const {
  const auto& events = book_["events"];
  const auto event = events.find(eventID);
  if (event == events.end() || !event->is_object()) return nlohmann::json::array();
  const auto actions = event->find("actions");
  return actions != event->end() && actions->is_array() ? *actions : nlohmann::json::array();
}

void EventBook::SetActions(const std::string& eventID, const nlohmann::json& actions) {
  auto& event = book_["events"][eventID];
  if (!event.is_object()) event = nlohmann::json::object();
  event["actions"] = actions;
  Save();
}

void EventBook::Forget(const std::string& eventID) {
  if (book_["events"].erase(eventID) > 0) Save();
}

void EventBook::Save() const { WriteWholeFile(file_, book_.dump(2) + "\n"); }

}  // namespace keplo::host
