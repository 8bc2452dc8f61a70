#include "host_program/event_book.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "disk/json_file.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "host_program/press_actions.h"
#include "program/book_numbers.h"

namespace keplo::host {

namespace {

constexpr int kVersion = 1;

nlohmann::json ReadBook(const std::filesystem::path& file) {
  try {
    return ParseEventBook(ReadJsonFile(file), file);
  } catch (const Failure& failure) {
    if (failure.Number() != ENOENT) throw;
    return {{"version", kVersion}, {"next_event_id", 1}, {"events", nlohmann::json::object()}};
  }
}

}  // namespace

nlohmann::json ParseEventBook(std::string_view text, const std::filesystem::path& file) {
  const std::string advice = ". Mend it, or move it away to begin anew.";
  nlohmann::json book;
  try {
    book = ParseJsonObject(text);
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), file.string() + " " + failure.what() + advice);
  }
  if (book.value("version", nlohmann::json()) != kVersion) {
    throw Failure(EINVAL,
                  file.string() + " was not written by this version of keplo-host: \"version\" is not 1.");
  }
  if (!book.contains("events") || !book["events"].is_object()) {
    throw Failure(EINVAL, file.string() + " has no object \"events\"" + advice);
  }
  if (const std::string mistake = MistakeInActions(book["events"]); !mistake.empty()) {
    throw Failure(EINVAL, file.string() + ": " + mistake + advice);
  }
  return book;
}

EventBook::EventBook(std::filesystem::path file) : file_(std::move(file)) { Read(); }

void EventBook::Read() {
  const FileStamp stamp =
      StampOf(file_);  // taken first, so that a change during the read is noticed next time
  book_ = ReadBook(file_);
  stamp_ = stamp;
}

void EventBook::ReadIfChanged() {
  if (StampOf(file_) != stamp_) Read();
}

void EventBook::Change(const std::function<void(nlohmann::json& book)>& change) {
  std::error_code ignored;  // if it fails, so will writing the file
  PosixFileSystem files;
  const std::filesystem::path target = files.Resolve(file_);
  std::filesystem::create_directories(FolderOf(target), ignored);
  // Locks the folder, since every change replaces the file itself.
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
  stamp_ = StampOf(file_);
}

std::string EventBook::NewEventID(const std::vector<std::string>& known) {
  Change([&](nlohmann::json& book) {
    next_ = std::max(next_, FirstFreeNumber(book));
    for (const std::string& eventID : known) next_ = std::max(next_, NumberAfter(eventID));
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

bool EventBook::PressesKeys() const {
  const auto& events = book_["events"].items();
  return std::any_of(events.begin(), events.end(), [this](const auto& event) {
    const nlohmann::json actions = ActionsOf(event.key());
    return std::any_of(actions.begin(), actions.end(), IsKeyAction);
  });
}

void EventBook::SetActions(const std::string& eventID, const nlohmann::json& actions) {
  Change([&](nlohmann::json& book) {
    auto& event = book["events"][eventID];
    if (!event.is_object()) event = nlohmann::json::object();
    event["actions"] = actions;
  });
}

void EventBook::Forget(const std::string& eventID) {
  Change([&](nlohmann::json& book) {
    // The number may have been assigned by another program, and must not be reused.
    const std::int64_t next = std::max(FirstFreeNumber(book), NumberAfter(eventID));
    if (next > 0) book["next_event_id"] = next;
    book["events"].erase(eventID);
  });
}

}  // namespace keplo::host
