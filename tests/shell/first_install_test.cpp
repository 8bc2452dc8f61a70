#include "install/first_install.h"

#include "config/commands.h"
#include "config/protocols.h"
#include "shell_fixture.h"

namespace keplo {
namespace {

TEST(FirstInstall, BringsWhatIsMissingAndNeverOverwrites) {
  const tests::TempFolder folder;
  PosixFileSystem files;
  const auto appPath = folder.Path() / "new" / "home";
  EXPECT_TRUE(BringFirstInstall(appPath, files));

  KeploMod mod(appPath, files);
  LoadConfig(mod.Store);
  EXPECT_EQ(ListProtocols(mod.Store.CfgText), (std::vector<std::string>{"NEC", "SONY", "RC5", "Template"}));
  EXPECT_EQ(ListCommands(mod.Store.CfgText, "NEC").front().Name, "TV_POWER");
  const ui::SystemClock clock;
  Data data(appPath, clock);
  ui::ListView list;
  EXPECT_TRUE(colclsKeploEvents(data, clock).Initialise(list));
  EXPECT_EQ(list.Count(), 0);

  EXPECT_EQ(folder.Read("new/home/inkeplo.ico").substr(0, 4), std::string("\0\0\1\0", 4))
      << "the host asks for it";

  folder.Write("new/home/keplo.cfg", "mine");
  EXPECT_FALSE(BringFirstInstall(appPath, files));
  EXPECT_EQ(folder.Read("new/home/keplo.cfg"), "mine");

  std::filesystem::remove(appPath / "inputKeplo.mdb");
  EXPECT_TRUE(BringFirstInstall(appPath, files));
  EXPECT_EQ(folder.Read("new/home/keplo.cfg"), "mine");
}

TEST(FirstInstall, ShipsAFileThatASaveLeavesAsItIs) {
  const tests::TempFolder folder;
  PosixFileSystem files;
  BringFirstInstall(folder.Path(), files);
  const std::string shipped = folder.Read("keplo.cfg");
  KeploMod mod(folder.Path(), files);
  LoadConfig(mod.Store);
  SaveConfig(mod.Store);
  EXPECT_EQ(folder.Read("keplo.cfg"), shipped);
}

}  // namespace
}  // namespace keplo
