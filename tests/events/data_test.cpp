#include "events/data.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "event_map_fixture.h"
#include "events/failure_numbers.h"
#include "events/transaction.h"

namespace keplo::tests {
namespace {

constexpr const char* kTwoEvents =
    "insert into colclsKeploEvents values ('1', 'Power', '', 'NEC&POWER', 1, 0),"
    " ('2', 'Mute', 'Mute', 'NEC&MUTE', 0, 3)";

TEST(Data, OpensOnDemandAndReopensWithTheStoredText) {
  const EventFolder folder(kTwoEvents);
  EventMap map(folder);
  Recordset rows;
  ASSERT_EQ(map.Database.ExecuteSQL(kSelectAllEvents, rows), 1);
  EXPECT_EQ(map.Database.CloseConnection(), 1);
  EXPECT_EQ(map.Database.Connection().State(), 0);
  rows.MoveNext();  // a snapshot outlives the connection
  EXPECT_EQ(rows.FieldText("EventName"), "Mute");
  EXPECT_EQ(map.Database.CheckConnection(), 1);
  EXPECT_EQ(map.Database.Connection().State(), 1);
}

TEST(Data, KeepsARecordOfEachFailure) {
  const AppFolder folder;
  const StoppedClock clock;
  Data data(folder.Path(), clock);
  const std::string date = "|Thu Nov  7 16:31:11 2002|", path = folder.Database().string();

  EXPECT_EQ(data.Initialise(), 0);
  EXPECT_EQ(Shown(data.ErrorDetails()), "Data|Initialise|65550" + date + path);
  EXPECT_EQ(data.CheckConnection(), 0);
  EXPECT_EQ(Shown(data.ErrorDetails()), "Data|CheckConnection|65550" + date);
  Recordset rows;
  EXPECT_EQ(data.ExecuteSQL("select 1", rows), 0);
  EXPECT_EQ(Shown(data.ErrorDetails()), "Data|ExecuteSQL|65550" + date + "select 1");
  EXPECT_TRUE(folder.Files().empty());  // looking for a database never makes one

  folder.CreateTable();
  EXPECT_EQ(data.ExecuteSQLCommand("delete form x"), 0);
  EXPECT_EQ(Shown(data.ErrorDetails()), "Data|ExecuteSQLCommand|65537" + date + "delete form x");
  for (const char* sql : {"select form", "", "select 1; select 2"}) {
    EXPECT_EQ(data.ExecuteSQL(sql, rows), 0) << sql;
    EXPECT_EQ(data.ErrorDetails().ErrorDetail, sql);
  }
}

TEST(Data, RollsBackATransactionOfAFailingStatement) {
  const EventFolder folder;
  EventMap map(folder);
  EXPECT_EQ(map.Database.ExecuteSQLCommand("begin; delete from colclsKeploEvents; bad"), 0);
  EXPECT_TRUE(map.Events.Add(Event("1")));

  map.Database.ExecuteSQLCommand("begin; delete from colclsKeploEvents");
  EXPECT_EQ(map.Database.ExecuteSQLCommand("bad"), 0);  // began none, so the caller's continues
  EXPECT_EQ(map.Database.ExecuteSQLCommand("rollback"), 1);
  EXPECT_EQ(StoredEvents(folder), map.Members());
}

TEST(Transaction, LocksForWritingAtOnce) {
  const EventFolder folder;
  Connection mine, other(std::chrono::milliseconds(1));
  mine.Open(folder.Database());
  other.Open(folder.Database());
  const Transaction transaction(mine.Database());
  EXPECT_EQ(FailureOf([&] { Transaction late(other.Database()); }).Number(),
            SqliteFailureNumber(SQLITE_BUSY));
}

TEST(Recordset, ChangesTheTableRowByRow) {
  const EventFolder folder(kTwoEvents);
  Connection connection;
  connection.Open(folder.Database());
  int rowsRead = 0;
  sqlite3_trace_v2(
      connection.Database(), SQLITE_TRACE_ROW,
      [](unsigned, void* count, void*, void*) { return ++*static_cast<int*>(count); }, &rowsRead);
  Recordset added, rows;
  added.Open(AllEvents(), connection);
  added.AddNew();
  EXPECT_EQ(rowsRead, 0) << "an addition reads nothing";
  rows.Open(AllEvents(), connection);
  rows.SetFieldValue("eventname", "lost");
  rows.MoveNext();  // drops the change
  rows.SetFieldValue("EventName", "Silence");
  rows.Update();
  rows.AddNew();
  for (const char* text : {"EventID", "EventName", "EventDescription", "IRCommand"})
    rows.SetFieldValue(text, "");
  for (const char* number : {"Enabled", "Zone"}) rows.SetFieldValue(number, std::int64_t{1});
  rows.Update();
  rows.SetFieldValue("EventName", "New");  // the new row has become the present one
  rows.Update();
  EXPECT_EQ(StoredEvents(folder),
            (Texts{"1|Power||NEC&POWER|on|0", "2|Silence|Mute|NEC&MUTE|off|3", "|New|||on|1"}));
}

TEST(Recordset, RefusesClosedAndReadOnlyRecordsets) {
  const EventFolder folder;
  Connection connection;
  Recordset rows;
  EXPECT_EQ(FailureOf([&] { rows.MoveNext(); }).Number(), kObjectClosed);
  EXPECT_EQ(FailureOf([&] { rows.Open(AllEvents(), connection); }).Number(), kObjectClosed);
  connection.Open(folder.Database());
  EXPECT_EQ(FailureOf([&] { connection.Open(); }).Number(), kObjectOpen);
  rows.Open(kSelectAllEvents, connection);
  EXPECT_EQ(FailureOf([&] { rows.AddNew(); }).Number(), kRowsReadOnly);
}

TEST(Recordset, LeavesARowThatAnotherProgramReplaced) {
  const EventFolder folder(kTwoEvents);
  Connection mine, other;
  mine.Open(folder.Database());
  other.Open(folder.Database());
  Recordset rows;
  rows.Open(EventWithID("2"), mine);
  ASSERT_FALSE(rows.Eof());
  // The new event takes over the rowid of the deleted one.
  other.Execute(
      "delete from colclsKeploEvents where EventID = '2';"
      "insert into colclsKeploEvents values ('7', 'Other', '', '', 1, 0)");
  rows.SetFieldValue("EventName", "Silence");
  EXPECT_EQ(FailureOf([&] { rows.Update(); }).Number(), kRowGone);
  EXPECT_EQ(FailureOf([&] { rows.Delete(); }).Number(), kRowGone);
  EXPECT_EQ(StoredEvents(folder), (Texts{"1|Power||NEC&POWER|on|0", "7|Other|||on|0"}));
}

}  // namespace
}  // namespace keplo::tests
