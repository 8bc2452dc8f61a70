#pragma once

#include <gtest/gtest.h>

#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "disk/posix_file_system.h"
#include "doubles/expect.h"
#include "doubles/temp_folder.h"
#include "events/col_cls_keplo_events.h"
#include "events/event_schema.h"
#include "events/event_table.h"

namespace keplo::tests {

/// 7 November 2002, 16:31:11 local time.
class StoppedClock : public ui::Clock {
 public:
  std::chrono::system_clock::time_point Now() const override {
    std::tm when{11, 31, 16, 7, 10, 102, 0, 0, -1, 0, nullptr};
    return std::chrono::system_clock::from_time_t(std::mktime(&when));
  }
};

/// An application path without a database.
struct AppFolder : TempFolder {
  std::filesystem::path Database() const { return Path() / kDatabaseFile; }

  void CreateTable() const {
    PosixFileSystem files;
    CreateEventTable(Database(), files);
  }
};

inline std::shared_ptr<clsKeploEvent> Event(const std::string& id, const std::string& name = "Power") {
  return std::make_shared<clsKeploEvent>(clsKeploEvent{id, name, "", "NEC&POWER", true, 3});
}

/// One line that shows all of an event.
inline std::string Shown(const clsKeploEvent& event) {
  return event.EventID + "|" + event.EventName + "|" + event.EventDescription + "|" + event.IRCommand + "|" +
         (event.Enabled ? "on" : "off") + "|" + std::to_string(event.Zone);
}

inline std::string Shown(const HostErrorRecord& record) {
  return record.ErrorSource + "|" + record.ErrorProcedure + "|" + std::to_string(record.ErrorNumber) + "|" +
         record.ErrorDate + "|" + record.ErrorDetail;
}

template <typename Shape>
Texts ShownAll(const std::vector<Shape>& things) {
  Texts lines;
  for (const auto& thing : things) lines.push_back(Shown(thing));
  return lines;
}

/// One program's view of the event map; records what it reports to its host.
struct EventMap {
  explicit EventMap(const AppFolder& folder,
                    std::chrono::milliseconds busyTimeout = std::chrono::milliseconds(1))
      : Database(folder.Path(), Clock, busyTimeout) {
    Events.TriggerInputErrorCondition = [this](HostErrorRecord& record, bool& stopping) {
      EXPECT_FALSE(stopping);
      Errors.push_back(record);
    };
  }

  bool Load() { return Events.Initialise(List); }

  /// The one value that a statement gives.
  std::string Answer(const std::string& sql) {
    Recordset rows;
    EXPECT_EQ(Database.ExecuteSQL(sql, rows), 1) << Database.ErrorDetails().ErrorDescription;
    return rows.FieldText(sql.substr(sql.rfind(' ') + 1));
  }

  Texts Members() const {
    Texts members;
    for (const auto& event : Events) members.push_back(Shown(*event));
    return members;
  }

  StoppedClock Clock;
  Data Database;
  ui::ListView List;
  colclsKeploEvents Events{Database, Clock};
  std::vector<HostErrorRecord> Errors;
};

/// What the table of an application path holds, as a program that starts now loads it.
inline Texts StoredEvents(const AppFolder& folder) {
  EventMap map(folder);
  EXPECT_TRUE(map.Load()) << map.Database.ErrorDetails().ErrorDescription;
  return map.Members();
}

/// An application path with an empty event table, changed by statements.
struct EventFolder : AppFolder {
  explicit EventFolder(const std::string& sql = {}) {
    CreateTable();
    EventMap map(*this);
    EXPECT_EQ(map.Database.ExecuteSQLCommand(sql), 1) << map.Database.ErrorDetails().ErrorDescription;
  }
};

}  // namespace keplo::tests
