#pragma once

#include <string>
#include <string_view>

#include "host/component_entry.h"
#include "host/host_records.h"
#include "program/raised_event.h"

namespace keplo::host {

/// Where the host writes: events and errors to standard output, all else to standard error. With JSON, events
/// and errors are one object a line. On a stream that leads to the journal each line for a person carries its
/// level.
class HostLog {
 public:
  struct JournalStreams {
    bool Output = false, Error = false;
  };

  /// @param keys whether presses, holds and releases of keys are told
  HostLog(bool json, JournalStreams toJournal, bool keys = false)
      : json_(json), keys_(keys), toJournal_(toJournal) {}

  void Write(LogLevel level, const std::string& text) const;
  void Event(const RaisedEvent& event) const;
  void Error(const HostErrorRecord& record) const;
  /// @param what "press", "hold" or "release"
  void Key(std::string_view what, const HeardKey& key) const;
  /// The closing words; kept out of the JSON lines.
  void Summary(const std::string& text) const;

 private:
  bool json_, keys_;
  JournalStreams toJournal_;
};

}  // namespace keplo::host
