#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include "event_map_fixture.h"
#include "events/failure_numbers.h"

namespace keplo {
namespace {

using tests::AppFolder;
using tests::Event;
using tests::EventFolder;
using tests::EventMap;
using tests::Lines;
using tests::StoredEvents;

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
  EXPECT_NE(record.ErrorDescription.find(part), std::string::npos) << record.ErrorDescription;
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
  using namespace std::string_literals;
  const std::string good = EventFolder().Read(kDatabaseFile);
  std::string foreign = good, scratched = good;
  foreign.replace(68, 4, "\0\0\0\0"s);  // the application_id
  scratched.replace(good.size() / 2, 100, std::string(100, '\xAB'));
  struct Case {
    std::string Bytes;
    int Number;
    const char* Text;
  };
  const Case cases[] = {
      {"\0\1\0\0Standard Jet DB\0\1"s + std::string(4096, 'x'), SQLITE_NOTADB,
       "is in the old desktop-database format, which this program cannot read. Move it away, run 'keplo "
       "install'"},
      {"\0\1\0\0Standard ACE DB\0\2"s, SQLITE_NOTADB, "is in the old desktop-database format"},
      {"PROTOCOL=1\r\n", SQLITE_NOTADB, "is not an event database"},
      {"", SQLITE_NOTADB, "is not an event database. Put a backup in its place"},
      {foreign, SQLITE_NOTADB, "is not an event database. Put a backup in its place"},
      {good.substr(0, good.size() / 2), SQLITE_CORRUPT, "is damaged"},
      {scratched, SQLITE_CORRUPT, "is damaged"},
  };
  for (const Case& other : cases) {
    const AppFolder folder;
    folder.Write(kDatabaseFile, other.Bytes);
    ExpectRefused(folder, other.Number, folder.Database().string() + " " + other.Text);
    EXPECT_EQ(folder.Read(kDatabaseFile), other.Bytes);
  }
  ExpectRefused(EventFolder("pragma user_version = 2"), SQLITE_MISMATCH,
                "has the format 2, and this program reads format 1. A newer release wrote it");
}

TEST(DatabaseFile, IsRefusedWhenItCannotBeOpened) {
  const AppFolder folder;
  std::filesystem::create_directory(folder.Database());
  ExpectRefused(folder, SQLITE_CANTOPEN, "cannot be opened");

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

TEST(DatabaseFile, GivesWayToAnotherProgramAndRecovers) {
  const EventFolder folder;
  EventMap map(folder), late(folder), other(folder);
  ASSERT_TRUE(map.Load());
  other.Database.ExecuteSQLCommand("begin exclusive");
  ExpectNotAdded(map, SQLITE_BUSY, "is locked by another program");
  EXPECT_FALSE(late.Load());
  ExpectError(late.Database.ErrorDetails(), SQLITE_BUSY, "is locked by another program");

  other.Database.ExecuteSQLCommand("commit");
  EXPECT_TRUE(map.Events.Add(Event("1")));
  EXPECT_TRUE(late.Load());
}

TEST(DatabaseFile, UndoesAChangeThatAReaderKeepsFromTheDisk) {
  const EventFolder folder;
  EventMap map(folder), reader(folder);
  reader.Database.ExecuteSQLCommand("begin; select * from colclsKeploEvents");
  ExpectNotAdded(map, SQLITE_BUSY, "is locked by another program");
  reader.Database.ExecuteSQLCommand("commit");
  EXPECT_TRUE(StoredEvents(folder).empty());
  EXPECT_TRUE(map.Events.Add(Event("1")));
  EXPECT_EQ(StoredEvents(folder), map.Members());
}

TEST(DatabaseFile, TakesNoChangeOnceItWasMovedAway) {
  const EventFolder folder;
  EventMap map(folder);
  ASSERT_TRUE(map.Load());
  std::filesystem::rename(folder.Database(), folder.Path() / "backup.mdb");
  ExpectNotAdded(map, SQLITE_READONLY, "was moved or deleted while it was open");
}

TEST(CreateEventTable, MakesAWholeFileOrNothing) {
  const AppFolder folder;
  EXPECT_THROW(CreateEventTable(folder.Path() / "missing" / kDatabaseFile), Failure);
  folder.Write(kDatabaseFile, "a letter");
  EXPECT_THROW(CreateEventTable(folder.Database()), Failure);
  EXPECT_EQ(folder.Read(kDatabaseFile), "a letter");
  EXPECT_EQ(folder.Files(), Lines{kDatabaseFile});

  std::filesystem::remove(folder.Database());
  folder.Write(std::string(kDatabaseFile) + "-journal", "of the file that is gone");
  CreateEventTable(folder.Database());
  EXPECT_EQ(folder.Files(), Lines{kDatabaseFile});
}

}  // namespace
}  // namespace keplo
