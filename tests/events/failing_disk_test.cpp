#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string_view>

#include "event_map_fixture.h"

namespace {

bool foldersCannotBeFlushed = false;

long Flush(long call, int file) {
  struct stat status {};
  if (foldersCannotBeFlushed && fstat(file, &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EIO;
    return -1;
  }
  return syscall(call, file);
}

}  // namespace

// Take the place of the C library's, for SQLite too.
extern "C" int fsync(int file) { return static_cast<int>(Flush(SYS_fsync, file)); }
extern "C" int fdatasync(int file) { return static_cast<int>(Flush(SYS_fdatasync, file)); }

namespace keplo::tests {
namespace {

/// A disk without room for one more file.
int OpenWithoutRoom(const char* name, int flags, int mode) {
  if ((flags & O_CREAT) != 0 && std::string_view(name).ends_with("-journal")) {
    errno = ENOSPC;
    return -1;
  }
  return open(name, flags, mode);
}

void SetOpen(int (*call)(const char*, int, int)) {
  sqlite3_vfs* files = sqlite3_vfs_find(nullptr);
  files->xSetSystemCall(files, "open", reinterpret_cast<sqlite3_syscall_ptr>(call));
}

TEST(FailingDisk, IsReportedAccordingToTheEffect) {
  using Change = std::function<bool(colclsKeploEvents&)>;
  const std::pair<Change, Texts> cases[] = {
      {[](auto& events) { return events.Add(Event("2")); },
       {"1|Power||NEC&POWER|on|3", "2|Power||NEC&POWER|on|3"}},
      {[](auto& events) { return events.Update(Event("1", "New")); }, {"1|New||NEC&POWER|on|3"}},
      {[](auto& events) { return events.Delete("1"); }, {}},
  };
  for (const auto& [change, afterwards] : cases) {
    const EventFolder folder;
    EventMap map(folder);
    map.Events.Add(Event("1"));

    SetOpen(OpenWithoutRoom);
    EXPECT_FALSE(change(map.Events));
    SetOpen(nullptr);
    EXPECT_EQ(map.Members(), Texts{"1|Power||NEC&POWER|on|3"});
    ASSERT_EQ(map.Errors.size(), 1U);
    ExpectPart(map.Errors[0].ErrorDescription, "cannot be changed, because no journal can be made");

    foldersCannotBeFlushed = true;
    EXPECT_TRUE(change(map.Events));
    foldersCannotBeFlushed = false;
    ASSERT_EQ(map.Errors.size(), 2U);
    ExpectPart(map.Errors[1].ErrorDescription,
               "is saved, but a power cut may bring the old events back (disk I/O error)");
    EXPECT_EQ(map.Members(), afterwards);
    EXPECT_EQ(StoredEvents(folder), afterwards);
  }
}

}  // namespace
}  // namespace keplo::tests
