#include "install/first_install.h"

#include "config/protocols.h"
#include "config/stepped_files.h"
#include "doubles/child_process.h"
#include "install/shipped_files.h"
#include "shell_fixture.h"

namespace keplo {
namespace {

/// Runs a first install in a process that is killed ahead of one of its file operations.
/// @return false if the install came to its end
bool IsKilledAt(int operation, const std::filesystem::path& appPath, Unpublished way) {
  tests::ChildProcess child([&] {
    PosixFileSystem real(way);
    tests::DyingFiles files(real, operation);
    BringFirstInstall(appPath, files);
  });
  return child.Join() == tests::DyingFiles::kKilled;
}

/// What a program does at its start.
void Start(const std::filesystem::path& appPath) {
  PosixFileSystem files;
  CompleteInstall(appPath, files);
  KeploMod mod(appPath, files);
  LoadConfig(mod.Store);
  const ui::SystemClock clock;
  Data data(appPath, clock);
  ui::ListView list;
  EXPECT_TRUE(colclsKeploEvents(data, clock).Initialise(list));
  EXPECT_EQ(list.Count(), 0);
}

TEST(FirstInstall, IsCompletedByTheNextStartWhereverItWasKilled) {
  struct Case {
    const char* Name;
    Unpublished Way;  // in which the file system makes files
    const char* OwnConfig;
  };
  for (const Case& install : {Case{"nameless files", Unpublished::Nameless, nullptr},
                              Case{"named files", Unpublished::Named, nullptr},
                              Case{"a keplo.cfg of the user", Unpublished::Named, "mine"}}) {
    int operation = 0;
    for (bool killed = true; killed;) {
      SCOPED_TRACE(install.Name + std::string(", killed ahead of operation ") + std::to_string(++operation));
      const tests::TempFolder folder;
      if (install.OwnConfig != nullptr) folder.Write("keplo.cfg", install.OwnConfig);
      killed = IsKilledAt(operation, folder.Path(), install.Way);
      Start(folder.Path());
      EXPECT_EQ(folder.Read("keplo.cfg"),
                install.OwnConfig == nullptr ? ShippedFiles()[0].Bytes : install.OwnConfig);
      EXPECT_EQ(folder.Read("inkeplo.ico"), ShippedFiles()[1].Bytes);
      using Files = std::filesystem::directory_iterator;
      EXPECT_EQ(std::distance(Files(folder.Path()), Files()), 3) << "nothing is left beside the three files";
    }
    EXPECT_GT(operation, 10) << install.Name;
  }
}

TEST(FirstInstall, IsCompletedWithAWordOnWhatTheUserMayHaveABackupOf) {
  struct Case {
    std::string Missing;
    bool OfConfig, OfMap;
  };
  for (const Case& install :
       {Case{"keplo.cfg", true, false}, {"inputKeplo.mdb", false, true}, {"inkeplo.ico", false, false}}) {
    SCOPED_TRACE(install.Missing);
    const tests::TempFolder folder;
    PosixFileSystem files;
    EXPECT_TRUE(CompleteInstall(folder.Path(), files).IsFirst);
    ASSERT_TRUE(std::filesystem::remove(folder.Path() / install.Missing));
    const StartInstall start = CompleteInstall(folder.Path(), files);
    EXPECT_FALSE(start.IsFirst);
    const std::string told = "There was no " + install.Missing + " in ";
    EXPECT_EQ(start.OfConfig.substr(0, told.size()), install.OfConfig ? told : "");
    EXPECT_EQ(start.OfMap.substr(0, told.size()), install.OfMap ? told : "");
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / install.Missing));
  }
}

TEST(FirstInstall, ShipsAFileThatASaveLeavesAsItIs) {
  const tests::TempFolder folder;
  PosixFileSystem files;
  const auto appPath = folder.Path() / "new" / "home";
  EXPECT_EQ(BringFirstInstall(appPath, files).size(), 3U);
  EXPECT_TRUE(BringFirstInstall(appPath, files).empty());
  KeploMod mod(appPath, files);
  LoadConfig(mod.Store);
  EXPECT_EQ(ListProtocols(mod.Store.CfgText), (std::vector<std::string>{"NEC", "SONY", "RC5", "Template"}));
  SaveConfig(mod.Store);
  EXPECT_EQ(folder.Read("new/home/keplo.cfg"), ShippedFiles()[0].Bytes);
}

}  // namespace
}  // namespace keplo
