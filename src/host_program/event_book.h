#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "disk/file_stamp.h"

namespace keplo::host {

/// Parses a book of events.
/// @param file for the message of a failure
/// @throws Failure if the text is not a book of events
nlohmann::json ParseEventBook(std::string_view text, const std::filesystem::path& file);

/// The host's book of events: the next EventID, and what each event does, in a JSON file:
///
///     {"version": 1, "next_event_id": 18,
///      "events": {"17": {"actions": [{"kind": "run", "program": "/usr/bin/lamp", "arguments": ["on"]}]}}}
///
/// Unknown contents of the file are kept. The file may be edited or changed by another host at any time, so
/// every change begins by reading it.
class EventBook {
 public:
  /// A missing file counts as an empty book.
  /// @throws Failure if the file cannot be read or is not a book of events
  explicit EventBook(std::filesystem::path file);

  /// Reads the file again if it has changed. After a failure the book is unchanged.
  /// @throws Failure as the constructor
  void ReadIfChanged();
  /// Reads the file again.
  /// @throws Failure as the constructor
  void Read();

  /// A new EventID, which no event had before. It is a number.
  /// @param known EventIDs that are or were in the event map, perhaps added by other programs
  /// @throws Failure if the file cannot be read or written
  std::string NewEventID(const std::vector<std::string>& known);

  /// The actions of an event, as last read; an array.
  nlohmann::json ActionsOf(const std::string& eventID) const;
  /// Whether any event presses a key.
  bool PressesKeys() const;
  /// Replaces the actions of an event and saves.
  /// @throws Failure if the file cannot be read or written
  void SetActions(const std::string& eventID, const nlohmann::json& actions);
  /// Forgets an event, but not that its EventID has been used, and saves.
  /// @throws Failure if the file cannot be read or written
  void Forget(const std::string& eventID);

 private:
  /// Reads, changes and saves the book under a lock.
  void Change(const std::function<void(nlohmann::json& book)>& change);

  std::filesystem::path file_;
  FileStamp stamp_;
  nlohmann::json book_;
  std::int64_t next_ = 1;  // so that no number is reused even if the file is removed
};

}  // namespace keplo::host
