#include "events/event_table.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "event_map_fixture.h"

namespace {

int flushesToFailure = 0;
bool dieAtFailure = false;

}  // namespace

/// Stands in for a disk that fails, or for a power cut, at one of the flushes.
extern "C" int fsync(int file) {
  if (--flushesToFailure != 0) return static_cast<int>(syscall(SYS_fsync, file));
  if (dieAtFailure) kill(getpid(), SIGKILL);
  errno = EIO;
  return -1;
}

namespace keplo {
namespace {

using tests::AppFolder;
using tests::Lines;
using tests::StoredEvents;

const std::string kJournal = std::string(kDatabaseFile) + "-journal";

std::string Refusal(const AppFolder& folder) {
  try {
    CreateEventTable(folder.Database());
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

void ExpectPart(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << text;
}

template <typename Preparation>
void CreateAndDie(const AppFolder& folder, Preparation prepare) {
  const pid_t program = fork();
  if (program == 0) {
    prepare();
    CreateEventTable(folder.Database());
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(program, &status, 0), program);
  EXPECT_TRUE(WIFSIGNALED(status));
}

TEST(CreateEventTable, LeavesWhatIsThere) {
  const AppFolder folder;
  folder.Write(kDatabaseFile, "a letter");
  folder.Write(kJournal, "of the letter");
  ExpectPart(Refusal(folder), "exists already and was left as it is");
  EXPECT_EQ(folder.Read(kDatabaseFile), "a letter");
  EXPECT_EQ(folder.Read(kJournal), "of the letter");

  std::filesystem::remove(folder.Database());  // the journal may bring back a change of it
  ExpectPart(Refusal(folder), "cannot be made beside " + folder.Database().string() + "-journal");
  EXPECT_EQ(folder.Read(kJournal), "of the letter");
  EXPECT_EQ(folder.Files(), Lines{kJournal});

  std::filesystem::remove(folder.Path() / kJournal);
  std::filesystem::create_symlink("nowhere", folder.Database());
  ExpectPart(Refusal(folder), "exists already");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Database()));
  EXPECT_EQ(folder.Files(), Lines{kDatabaseFile});
}

TEST(CreateEventTable, FollowsTheUmask) {
  for (const mode_t umaskOfUser : {0022U, 0077U, 0002U}) {
    const AppFolder folder;
    const mode_t before = umask(umaskOfUser);
    CreateEventTable(folder.Database());
    umask(before);
    EXPECT_EQ(std::filesystem::status(folder.Database()).permissions(),
              std::filesystem::perms(0666 & ~umaskOfUser));
  }
}

TEST(CreateEventTable, TellsADiskThatFails) {
  for (const int flush : {1, 2}) {  // of the file, of its folder
    const AppFolder folder;
    flushesToFailure = flush;
    ExpectPart(Refusal(folder), "cannot be made (Input/output error)");
    EXPECT_EQ(folder.Files().size(), flush == 1 ? 0U : 1U);
  }
}

TEST(CreateEventTable, LeavesNothingOrTheWholeFileWhenItIsKilled) {
  for (const rlim_t room : {0, 5000}) {  // bytes; the write beyond them kills
    const AppFolder folder;
    CreateAndDie(folder, [&] {
      const rlimit limit{room, room};
      setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_TRUE(folder.Files().empty());
  }
  for (const int flush : {1, 2}) {
    const AppFolder folder;
    CreateAndDie(folder, [&] {
      flushesToFailure = flush;
      dieAtFailure = true;
    });
    ASSERT_EQ(folder.Files(), flush == 1 ? Lines{} : Lines{kDatabaseFile});
    EXPECT_TRUE(flush == 1 || StoredEvents(folder).empty());
  }
}

}  // namespace
}  // namespace keplo
