#include "events/event_table.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "event_map_fixture.h"

namespace keplo::tests {
namespace {

const std::string kJournal = std::string(kDatabaseFile) + "-journal";

std::string Refusal(const AppFolder& folder) {
  return FailureOf([&] { folder.CreateTable(); }).what();
}

TEST(CreateEventTable, KeepsAnExistingTable) {
  const AppFolder folder;
  folder.Write(kDatabaseFile, "a letter");
  folder.Write(kJournal, "of the letter");
  ExpectPart(Refusal(folder), "exists already and was left as it is");
  EXPECT_EQ(folder.Read(kDatabaseFile), "a letter");
  EXPECT_EQ(folder.Read(kJournal), "of the letter");

  std::filesystem::remove(folder.Database());  // the journal may bring back a change of it
  ExpectPart(Refusal(folder), "cannot be made beside " + folder.Database().string() + "-journal");
  EXPECT_EQ(folder.Read(kJournal), "of the letter");
  EXPECT_EQ(folder.Files(), Texts{kJournal});

  std::filesystem::remove(folder.Path() / kJournal);
  std::filesystem::create_symlink("nowhere", folder.Database());
  ExpectPart(Refusal(folder), "exists already");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Database()));
  EXPECT_EQ(folder.Files(), Texts{kDatabaseFile});
}

TEST(CreateEventTable, FollowsTheUmask) {
  for (const mode_t umaskOfUser : {0022U, 0077U, 0002U}) {
    const AppFolder folder;
    const mode_t before = umask(umaskOfUser);
    folder.CreateTable();
    umask(before);
    EXPECT_EQ(std::filesystem::status(folder.Database()).permissions(),
              std::filesystem::perms(0666 & ~umaskOfUser));
  }
}

}  // namespace
}  // namespace keplo::tests
