#include "install/first_install.h"

#include "config/stepped_files.h"
#include "doubles/child_process.h"
#include "events/events_on_disk.h"
#include "install/shipped_files.h"
#include "shell_fixture.h"

namespace keplo::tests {
namespace {

/// Runs a first install in a process that is killed before one of its file operations.
/// @return false if the install came to its end
bool IsKilledAt(int operation, const std::filesystem::path& appPath, Unpublished way) {
  ChildProcess child([&] {
    PosixFileSystem real(way);
    DyingFiles files(real, operation);
    CreateFirstInstall(appPath, files);
  });
  return child.Join() == DyingFiles::kKilled;
}

/// What a program does at its start.
void Start(const std::filesystem::path& appPath) {
  CompleteInstall(appPath);
  KeploMod mod(appPath);
  LoadConfig(mod.Store);
  EventsOnDisk disk(appPath);
  EXPECT_TRUE(disk.Events.Initialise(disk.List));
  EXPECT_EQ(disk.List.Count(), 0);
}

TEST(FirstInstall, IsCompletedByTheNextStartWhereverItWasKilled) {
  for (const Unpublished way : {Unpublished::Nameless, Unpublished::Named}) {
    int operation = 0;
    for (bool killed = true; killed;) {
      SCOPED_TRACE("killed ahead of operation " + std::to_string(++operation));
      const TempFolder folder;
      killed = IsKilledAt(operation, folder.Path(), way);
      Start(folder.Path());
      EXPECT_EQ(folder.Read("keplo.cfg"), ShippedFiles()[0].Bytes);
      EXPECT_EQ(folder.Read("inkeplo.ico"), ShippedFiles()[1].Bytes);
      EXPECT_EQ(folder.Files().size(), 3U) << "nothing is left beside the three files";
    }
    EXPECT_GT(operation, 10);
  }
}

TEST(FirstInstall, ReplacesALostFileOnlyOnRequest) {
  for (const std::string lost : {"keplo.cfg", "inputKeplo.mdb"}) {
    const TempFolder folder;
    const auto appPath = folder.Path() / "new" / "home";
    PosixFileSystem files;
    EXPECT_TRUE(CompleteInstall(appPath));
    ASSERT_TRUE(std::filesystem::remove(appPath / lost));
    EXPECT_FALSE(CompleteInstall(appPath));
    EXPECT_FALSE(std::filesystem::exists(appPath / lost));
    EXPECT_EQ(CreateFirstInstall(appPath, files), Texts{lost});
  }
}

}  // namespace
}  // namespace keplo::tests
