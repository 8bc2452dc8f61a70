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

/// The book that a text is.
/// @param file for the text of the failure
/// @throws Failure for what is no event book
nlohmann::json ParseEventBook(std::string_view text, const std::filesystem::path& file);

/// What the host keeps of the events: which identifier comes next and what each event does, in one JSON file:
///
///     {"version": 1, "next_event_id": 18,
///      "events": {"17": {"actions": [{"kind": "run", "program": "/usr/bin/lamp", "arguments": ["on"]}]}}}
///
/// What is in the file and not understood stays in it. Others may change the file while the host runs, by
/// hand or as another host: each change begins with what is in the file then.
class EventBook {
 public:
  /// @throws Failure for a file that cannot be read or is no event book; one that is not there is an empty
  /// book
  explicit EventBook(std::filesystem::path file);

  /// Reads the file again if it is another than the one last read. After a failure the book holds what it
  /// held.
  /// @throws Failure as the constructor
  void ReadIfChanged();
  /// Reads the file again, and throws likewise.
  void Read();

  /// An identifier that no event had before: a number, which is text to everyone else.
  /// @param known identifiers that are or were in the event map, which others than the host may have put
  ///        there
  /// @throws Failure if the file cannot be read or written
  std::string NewEventID(const std::vector<std::string>& known);

  /// The actions of an event in order, as last read; an array.
  nlohmann::json ActionsOf(const std::string& eventID) const;
  /// Whether an event presses a key.
  bool PressesKeys() const;
  /// Replaces the actions of an event and saves.
  /// @throws Failure if the file cannot be read or written
  void SetActions(const std::string& eventID, const nlohmann::json& actions);
  /// Forgets an event, but for its identifier having been used, and saves.
  /// @throws Failure if the file cannot be read or written
  void Forget(const std::string& eventID);

 private:
  /// Reads, changes and saves, while no other host does.
  void Change(const std::function<void(nlohmann::json& book)>& change);

  std::filesystem::path file_;
  FileStamp stamp_;
  nlohmann::json book_;
  std::int64_t next_ = 1;  // no identifier comes twice even if the file is taken away
};

}  // namespace keplo::host
