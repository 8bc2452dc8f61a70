#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <thread>

#include "event_map_fixture.h"
#include "events/failure_numbers.h"

namespace keplo::tests {
namespace {

/// Lets file permissions count, as they do not for root.
class AsOrdinaryUser {
 public:
  AsOrdinaryUser() : user_(geteuid()) { Become(user_ == 0 ? 65534 : user_); }
  ~AsOrdinaryUser() { Become(user_); }

 private:
  static void Become(uid_t user) { EXPECT_EQ(seteuid(user), 0); }

  uid_t user_;
};

void ExpectError(const HostErrorRecord& record, int number, const std::string& part) {
  EXPECT_EQ(record.ErrorNumber & ~0xFF00, kSqliteFailures + number);  // of any extended kind
  ExpectPart(record.ErrorDescription, part);
}

void ExpectRefused(const AppFolder& folder, int number, const std::string& part) {
  EventMap map(folder);
  EXPECT_FALSE(map.Load());
  ExpectError(map.Database.ErrorDetails(), number, part);
}

/// Adds an event to a map that refuses it.
void ExpectNotAdded(EventMap& map, int number, const std::string& part) {
  EXPECT_FALSE(map.Events.Add(Event("1")));
  ASSERT_EQ(map.Errors.size(), 1U);
  ExpectError(map.Errors[0], number, part);
}

TEST(DatabaseFile, IsRefusedWhenItIsOfAnotherKind) {
  const std::string good = EventFolder().Read(kDatabaseFile);
  for (const auto& [bytes, number, reported] :
       {std::tuple<std::string, int, std::string>{"PROTOCOL=1\r\n", SQLITE_NOTADB,
                                                  "is not an event database"},
        {good.substr(0, good.size() - 1), SQLITE_CORRUPT, "is damaged (it holds "}}) {
    const AppFolder folder;
    folder.Write(kDatabaseFile, bytes);
    ExpectRefused(folder, number, reported);
  }
  ExpectRefused(EventFolder("pragma user_version = 2"), SQLITE_MISMATCH, "A newer release wrote it");
  ExpectRefused(EventFolder("alter table colclsKeploEvents rename to events;"
                            "create view ColClsKeploEvents as select * from events"),
                SQLITE_NOTADB, "holds a view in place of the event table");
}

TEST(DatabaseFile, IsRefusedWhenItCannotBeOpened) {
  const EventFolder secret;
  std::filesystem::permissions(secret.Database(), std::filesystem::perms::none);
  const AsOrdinaryUser user;
  ExpectRefused(secret, SQLITE_CANTOPEN, "Permission denied). Check that it is a file and that this user");
}

TEST(DatabaseFile, IsReadButNotChangedWithoutTheRightToWrite) {
  const EventFolder folder("insert into colclsKeploEvents values ('7', '', '', '', 1, 0)");
  std::filesystem::permissions(folder.Database(), std::filesystem::perms(0444));
  const AsOrdinaryUser user;
  EventMap map(folder);
  EXPECT_TRUE(map.Load());
  ExpectNotAdded(map, SQLITE_READONLY, "Give this user the right to write to the file and to its folder.");
  EXPECT_EQ(map.Events.count(), 1);
}

TEST(DatabaseFile, FlushesEveryChangeAndLeavesWriteAheadMode) {
  const EventFolder folder;
  EventMap foreign(folder), map(folder);
  ASSERT_EQ(foreign.Answer("pragma journal_mode"), "delete");
  foreign.Database.ExecuteSQLCommand("pragma journal_mode = wal; select * from colclsKeploEvents");
  EXPECT_FALSE(map.Load());
  ExpectError(map.Database.ErrorDetails(), SQLITE_BUSY,
              "is open in another program in write-ahead mode. Close the other program");

  foreign.Database.CloseConnection();
  EXPECT_TRUE(map.Load());
  EXPECT_EQ(map.Answer("pragma journal_mode"), "delete");
  EXPECT_EQ(map.Answer("pragma synchronous"), "3");  // extra
  EXPECT_EQ(folder.Files(), Texts{kDatabaseFile});
}

TEST(DatabaseFile, DoesNotDependOnTheWorkingDirectory) {
  const EventFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directory(folder.Path() / "file:");  // no address, whatever SQLite makes of one
  std::filesystem::rename(folder.Database(), folder.Path() / "file:" / kDatabaseFile);
  std::filesystem::current_path(folder.Path());
  const StoppedClock clock;
  Data data("file:", clock);
  std::filesystem::current_path(before);
  EXPECT_EQ(data.CheckConnection(), 1) << data.ErrorDetails().ErrorDescription;
}

TEST(DatabaseFile, WaitsForALockOfAnotherProgram) {
  using std::chrono::milliseconds;
  const EventFolder folder;
  for (const char* hold : {"begin exclusive", "pragma journal_mode = wal; select * from colclsKeploEvents"}) {
    EventMap patient(folder, milliseconds(20000)), other(folder);
    ASSERT_EQ(other.Database.ExecuteSQLCommand(hold), 1);
    std::thread release([&] {
      std::this_thread::sleep_for(milliseconds(50));
      other.Database.CloseConnection();
    });
    EXPECT_TRUE(patient.Events.Add(Event(hold))) << hold;
    release.join();
  }
}

TEST(DatabaseFile, FailsUnderALongLockAndRecovers) {
  for (const char* hold : {"begin exclusive", "begin; select * from colclsKeploEvents"}) {
    SCOPED_TRACE(hold);
    const EventFolder folder;
    EventMap map(folder), other(folder);
    ASSERT_TRUE(map.Load());
    other.Database.ExecuteSQLCommand(hold);
    ExpectNotAdded(map, SQLITE_BUSY, "is locked by another program");
    EXPECT_EQ(other.Database.ExecuteSQLCommand("commit"), 1);
    EXPECT_TRUE(StoredEvents(folder).empty());
    EXPECT_TRUE(map.Events.Add(Event("1")));
    EXPECT_EQ(StoredEvents(folder), map.Members());
  }
}

TEST(DatabaseFile, RefusesChangesOnceItWasMoved) {
  const EventFolder folder;
  EventMap map(folder);
  ASSERT_TRUE(map.Load());
  std::filesystem::rename(folder.Database(), folder.Path() / "backup.mdb");
  ExpectNotAdded(map, SQLITE_READONLY, "was moved or deleted while it was open");
}

}  // namespace
}  // namespace keplo::tests
