#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace keplo::host {

/// What the host keeps of the events: which identifier comes next and what each event does, in one JSON file:
///
///     {"version": 1, "next_event_id": 18,
///      "events": {"17": {"actions": [{"kind": "run", "program": "/usr/bin/lamp", "arguments": ["on"]}]}}}
///
/// What is in the file and not understood stays in it.
class EventBook {
 public:
  /// @throws Failure for a file that cannot be read or is no event book; one that is not there is an empty
  /// book
  explicit EventBook(std::filesystem::path file);

  /// An identifier that no event had before.
  /// @param known the identifiers in the event map, which others than the host may have put there
  std::string NewEventID(const std::vector<std::string>& known);

  /// The actions of an event in order; an array.
  nlohmann::json ActionsOf(const std::string& eventID) const;
  /// Replaces the actions of an event and saves.
  /// @throws Failure if the file cannot be written
  void SetActions(const std::string& eventID, const nlohmann::json& actions);
  /// Forgets an event and saves.
  /// @throws Failure if the file cannot be written
  void Forget(const std::string& eventID);

 private:
  void Save() const;

  std::filesystem::path file_;
  nlohmann::json book_;
};

}  // namespace keplo::host
