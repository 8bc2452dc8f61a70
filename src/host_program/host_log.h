#pragma once

#include <string>
#include <string_view>

#include "host/component_entry.h"
#include "host/host_records.h"
#include "program/raised_event.h"

namespace keplo::host {

/// The output of the host: events and errors go to standard output, everything else to standard error. With
/// JSON, events and errors are one object per line. On a stream connected to the journal, lines of text are
/// prefixed with their level.
class HostLog {
 public:
  struct JournalStreams {
    bool Output = false, Error = false;
  };

  /// @param keys whether to print presses, holds and releases of keys
  HostLog(bool json, JournalStreams toJournal, bool keys = false)
      : json_(json), keys_(keys), toJournal_(toJournal) {}

  void Write(LogLevel level, const std::string& text) const;
  void Event(const RaisedEvent& event) const;
  void Error(const HostErrorRecord& record) const;
  /// @param what "press", "hold" or "release"
  void Key(std::string_view what, const HeardKey& key) const;
  /// The summary at the end; it goes to standard error if standard output is JSON.
  void Summary(const std::string& text) const;

 private:
  bool json_, keys_;
  JournalStreams toJournal_;
};

}  // namespace keplo::host
