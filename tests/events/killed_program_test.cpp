#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <unistd.h>

#include <functional>

#include "doubles/child_process.h"
#include "event_map_fixture.h"

// Stands in for a power cut: the program is killed at each call in turn that a change of the event map makes
// to the system, half-way through where the call writes.

namespace keplo::tests {
namespace {

int callsToLive = 0;

void CountCall() {
  if (--callsToLive == 0) kill(getpid(), SIGKILL);
}

ssize_t DyingWrite(int file, const void* bytes, size_t size, off64_t offset) {
  const size_t torn = callsToLive == 1 ? size / 2 : size;
  const ssize_t written = pwrite64(file, bytes, torn, offset);
  CountCall();
  return written;
}

int DyingUnlink(const char* name) {
  CountCall();
  return unlink(name);
}

int DyingOpen(const char* name, int flags, int mode) {
  CountCall();
  return open(name, flags, mode);
}

template <typename Function>
void Replace(const char* call, Function* function) {
  sqlite3_vfs* files = sqlite3_vfs_find(nullptr);
  if (files->xGetSystemCall(files, call) == nullptr) return;
  files->xSetSystemCall(files, call, reinterpret_cast<sqlite3_syscall_ptr>(function));
}

using Change = std::function<bool(colclsKeploEvents&)>;

/// @return false if the program made the change in fewer calls and lives
bool KilledAtCall(int call, const EventFolder& folder, const Change& change) {
  ChildProcess program([&] {
    EventMap map(folder);
    map.Load();
    callsToLive = call;
    for (const char* write : {"pwrite64", "pwrite"}) Replace(write, DyingWrite);
    Replace("unlink", DyingUnlink);
    Replace("open", DyingOpen);
    _exit(change(map.Events) ? 0 : 1);
  });
  const int code = program.Join();
  EXPECT_LE(code, 0) << "neither killed nor done";
  return code < 0;
}

std::unique_ptr<EventFolder> FilledFolder(const std::string& name) {
  auto folder = std::make_unique<EventFolder>();
  EventMap map(*folder);
  for (const char* id : {"1", "2", "3"}) map.Events.Add(Event(id, name));
  return folder;
}

TEST(KilledProgram, LeavesTheOldOrTheNewEventsWhole) {
  const std::string name(9000, 'x');  // reaches over pages, so that a change writes several
  const Change changes[] = {
      [&](colclsKeploEvents& events) { return events.Add(Event("4", name)); },
      [&](colclsKeploEvents& events) { return events.Update(Event("1", "short")); },
      [&](colclsKeploEvents& events) { return events.Delete("2"); },
  };
  for (const Change& change : changes) {
    const auto model = FilledFolder(name);
    EventMap map(*model);
    map.Load();
    const auto before = map.Members();
    ASSERT_TRUE(change(map.Events));
    const auto after = StoredEvents(*model);

    int call = 0;
    for (bool killed = true; killed;) {
      const auto folder = FilledFolder(name);
      killed = KilledAtCall(++call, *folder, change);
      const auto found = StoredEvents(*folder);
      ASSERT_TRUE(found == after || (killed && found == before)) << "killed at call " << call;

      EventMap next(*folder);
      Recordset rows;
      ASSERT_EQ(next.Database.ExecuteSQL("pragma integrity_check", rows), 1);
      EXPECT_EQ(rows.FieldText("integrity_check"), "ok") << "killed at call " << call;
      EXPECT_TRUE(next.Events.Update(Event("3")));
      EXPECT_EQ(folder->Files(), Texts{kDatabaseFile}) << "killed at call " << call;
    }
    EXPECT_GT(call, 10);  // fewer calls cannot be a journalled change of several pages
  }
}

}  // namespace
}  // namespace keplo::tests
