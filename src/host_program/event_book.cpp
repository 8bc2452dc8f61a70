#include "host_program/event_book.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <utility>

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"

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

EventBook::EventBook(std::filesystem::path file) : file_(std::move(file)) { Read(); }

EventBook::Stamp EventBook::StampOfFile() const {
  struct stat status {};
  if (stat(file_.c_str(), &status) != 0) return {};
  return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void EventBook::Read() {
  const Stamp stamp = StampOfFile();  // first, so that a change during the reading is met the next time
  book_ = ReadBook(file_);
  stamp_ = stamp;
}

void EventBook::ReadIfChanged() {
  if (StampOfFile() != stamp_) Read();
}

void EventBook::Change(const std::function<void(nlohmann::json& book)>& change) {
  std::error_code ignored;  // a folder that cannot be made is told by the writing
  PosixFileSystem files;
  const std::filesystem::path target = files.Resolve(file_);
  std::filesystem::create_directories(FolderOf(target), ignored);
  // The folder is locked since a book itself is replaced with each change.
  const std::unique_ptr<LockedFolder> folder = LockFolderOf(files, target);
  Read();
  nlohmann::json changed = book_;
  change(changed);
  if (changed == book_) return;
  try {
    ReplaceInLockedFolder(files, target, changed.dump(2) + "\n");
    folder->Flush();
  } catch (const Failure& failure) {
    throw CannotBeWritten(file_, failure);
  }
  book_ = std::move(changed);
  stamp_ = StampOfFile();
}

std::string EventBook::NewEventID(const std::vector<std::string>& known) {
  Change([&](nlohmann::json& book) {
    const auto kept = book.find("next_event_id");
    if (kept != book.end() && kept->is_number_integer()) next_ = std::max(next_, kept->get<long>());
    for (const std::string& eventID : known) next_ = std::max(next_, NumberOf(eventID) + 1);
    for (const auto& event : book["events"].items()) next_ = std::max(next_, NumberOf(event.key()) + 1);
    book["next_event_id"] = next_ + 1;
  });
  return std::to_string(next_++);
}

nlohmann::json EventBook::ActionsOf(const std::string& eventID) const {
  const auto& events = book_["events"];
  const auto event = events.find(eventID);
  if (event == events.end() || !event->is_object()) return nlohmann::json::array();
  const auto actions = event->find("actions");
  return actions != event->end() && actions->is_array() ? *actions : nlohmann::json::array();
}

void EventBook::SetActions(const std::string& eventID, const nlohmann::json& actions) {
  Change([&](nlohmann::json& book) {
    auto& event = book["events"][eventID];
    if (!event.is_object()) event = nlohmann::json::object();
    event["actions"] = actions;
  });
}

void EventBook::Forget(const std::string& eventID) {
  Change([&](nlohmann::json& book) { book["events"].erase(eventID); });
}

}  // namespace keplo::host
