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
  const StoppedClock clock;
  Data data(folder.Path(), clock);
  EXPECT_EQ(data.CloseConnection(), 1);
  EXPECT_EQ(data.Connection().ConnectionString(), "");

  Recordset rows;
  ASSERT_EQ(data.ExecuteSQL(kSelectAllEvents, rows), 1);
  const sqlite3* first = data.Connection().Database();
  ASSERT_EQ(data.ExecuteSQL(kSelectAllEvents, rows), 1);
  EXPECT_EQ(data.Connection().Database(), first);

  EXPECT_EQ(data.CloseConnection(), 1);
  EXPECT_EQ(data.Connection().State(), 0);
  rows.MoveNext();  // a snapshot outlives the connection
  EXPECT_EQ(rows.FieldText("EventName"), "Mute");

  EXPECT_EQ(data.CheckConnection(), 1);
  EXPECT_EQ(data.Connection().State(), 1);
  EXPECT_EQ(data.Connection().ConnectionString(), folder.Database().string());
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
  EXPECT_EQ(
      data.ErrorDetails().ErrorDescription,
      "The event database " + path +
          " does not exist. Put a backup there, or bring an empty one with: keplo install --app-path '" +
          folder.Path().string() + "'");
  EXPECT_TRUE(folder.Files().empty());  // looking for a database never makes one

  folder.CreateTable();
  EXPECT_EQ(data.ExecuteSQLCommand("delete form x"), 0);
  EXPECT_EQ(Shown(data.ErrorDetails()), "Data|ExecuteSQLCommand|65537" + date + "delete form x");
  for (const char* sql : {"select form", "", "select 1; select 2"}) {
    EXPECT_EQ(data.ExecuteSQL(sql, rows), 0) << sql;
    EXPECT_EQ(data.ErrorDetails().ErrorDetail, sql);
  }
}

TEST(Data, UndoesATransactionThatAFailingTextBegan) {
  const EventFolder folder;
  EventMap map(folder);
  EXPECT_EQ(map.Database.ExecuteSQLCommand("begin; delete from colclsKeploEvents; bad"), 0);
  EXPECT_TRUE(map.Events.Add(Event("1")));

  map.Database.ExecuteSQLCommand("begin; delete from colclsKeploEvents");
  EXPECT_EQ(map.Database.ExecuteSQLCommand("bad"), 0);  // began nothing, so the caller's one goes on
  EXPECT_EQ(map.Database.ExecuteSQLCommand("rollback"), 1);
  EXPECT_EQ(StoredEvents(folder), map.Members());
}

TEST(Transaction, TakesTheRightToWriteAtOnce) {
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

TEST(Recordset, RefusesWhatHasNoRowOrNoLiveTable) {
  const EventFolder folder(kTwoEvents);
  Connection connection;
  Recordset closed, snapshot, none, live;
  EXPECT_EQ(FailureOf([&] { live.Open(AllEvents(), connection); }).Number(), kObjectClosed);
  connection.Open(folder.Database());
  snapshot.Open(kSelectAllEvents, connection);
  none.Open(EventWithID("3"), connection);
  live.Open(EventWithID("2"), connection);

  const std::vector<std::pair<std::function<void()>, int>> cases = {
      {[&] { connection.Open(); }, kObjectOpen},
      {[&] { closed.MoveNext(); }, kObjectClosed},
      {[&] { snapshot.SetFieldValue("Zone", std::int64_t{1}); }, kRowsReadOnly},
      {[&] { snapshot.FieldValue("Colour"); }, kNoSuchColumn},
      {[&] { none.FieldValue("EventID"); }, kNoCurrentRow},
      {[&] { none.Delete(); }, kNoCurrentRow},
  };
  for (std::size_t i = 0; i < cases.size(); ++i)
    EXPECT_EQ(FailureOf(cases[i].first).Number(), cases[i].second) << i;
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
