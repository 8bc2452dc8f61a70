#include "config/learn.h"

#include <gtest/gtest.h>

#include <map>

#include "config/commands.h"
#include "config/values.h"
#include "config_builder.h"
#include "failure.h"
#include "fake_disk.h"

namespace keplo {
namespace {

using tests::Config;
using tests::Protocol;
using tests::StoreOnDisk;
using Commands = std::vector<std::string>;

/// A file with the given commands in its NEC section and a command MUTE in its SONY section.
std::string With(const Commands& commands) {
  return Config(Protocol("NEC", commands) + Protocol("SONY", {"G0011,MUTE"}));
}

TEST(AddCommand, GoesBehindTheLastCommandInOneSave) {
  StoreOnDisk disk(With({"G10,EMPTY", "# a note"}));
  EXPECT_TRUE(AddCommand(disk.Store, "nec", " G1010 ", " POWER ").Done());
  EXPECT_EQ(disk.File(), With({"G1010,POWER", "# a note"})) << "the placeholder gives way";
  EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G1110", "UP").Done());
  EXPECT_EQ(disk.File(), With({"G1010,POWER", "G1110,UP", "# a note"}));
  EXPECT_EQ(disk.Store.CfgText, disk.File());
}

TEST(AddCommand, FindsAPlaceInAHandEditedSection) {
  for (const auto& [before, after] : std::vector<std::pair<Commands, Commands>>{
           {{}, {"GREPEAT= 72", "G1010,POWER"}}, {{"# nothing here"}, {"# nothing here", "G1010,POWER"}}}) {
    std::string text = With(before);
    text.insert(text.find("made for"), "one, two ");
    StoreOnDisk disk(text);
    EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G1010", "POWER").Done());
    EXPECT_NE(disk.File().find(tests::Lines(after)), std::string::npos) << disk.File();
    disk.Store.CurProtocol = "NEC";
    EXPECT_EQ(CountCommands(disk.Store), 1);
  }
}

TEST(AddCommand, TellsWhyItRefuses) {
  struct Case {
    std::string Protocol, Code, Name, Text;
  };
  const std::string name = "Use only a-z, A-Z,'-','_' characters";
  const std::string used = "This command name is in use for the current protocol.";
  const std::string invalid = "The code you want to save is invalid.";
  const std::vector<Case> cases = {
      {"TEMPLATE", "G1110", "UP", "This protocol is read-only."},
      {"recorded", "G1110", "UP", "This is a virtual read-only protocol!"},
      {"NEC", "G1", "UP", invalid},
      {"NEC", "G1x10", "UP", invalid},
      {"NEC", "1110", "UP", invalid},
      {"NEC", "g1110", "UP", invalid},
      {"NEC", "G11,10", "UP", invalid},
      {"NEC", "G11[10", "UP", invalid},
      {"NEC", "G11=10", "UP", invalid},
      {"NEC", "G1010", "UP", "This command exist as POWER"},
      {"NEC", "G101", "UP", "This command exist as POWER"},
      {"NEC", "G001", "UP", "This command exist as MUTE"},
      {"NEC", "G1110", "", "A new command needs a name."},
      {"NEC", "G1110", "U P", name},
      {"NEC", "G1110", "UP[", name},
      {"NEC", "G1110", "  ", used},
      {"NEC", "G1110", "power", used},
      {"NEC", "G1110", "OWE", used},
      {"NEC", "G1110", "repeat", used},
      {"JVC", "G1110", "UP", "The configuration has no whole section of a protocol JVC."},
      {"General", "G1110", "UP", "The configuration has no whole section of a protocol General."},
      {"END", "G1110", "UP", "The configuration has no whole section of a protocol END."},
  };
  StoreOnDisk disk(With({"G1010,POWER"}));
  for (const Case& c : cases) {
    EXPECT_EQ(RefusalText(AddCommand(disk.Store, c.Protocol, c.Code, c.Name)), c.Text)
        << c.Code << "," << c.Name;
  }
  EXPECT_EQ(disk.File(), With({"G1010,POWER"}));
  EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G101", "UP", Analysis::Second).Done()) << "beside a longer code";
  EXPECT_EQ(RefusalText(AddCommand(disk.Store, "NEC", "G1010", "DOWN", Analysis::Second)),
            "This command exist as POWER");
  EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G1110", "MUTE").Done()) << "a name of another section is free";
}

TEST(AddCommand, KeepsACommandThatIsNamedLikeThePlaceholder) {
  for (const std::string stored : {"G0101,EMPTY", "G0101,EMPTY-TRAY", "G101,EMPTY"}) {
    StoreOnDisk disk(With({stored}));
    EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G1110", "UP").Done());
    EXPECT_EQ(disk.File(), With({stored, "G1110,UP"}));
  }
}

TEST(AddCommand, RefusesWhatDoesNotFit) {
  const std::string filler(kMostCharacters - With({"G1010,POWER"}).size() - 10, '#');
  StoreOnDisk disk(filler + With({"G1010,POWER"}));
  EXPECT_THROW(AddCommand(disk.Store, "NEC", "G11100", "UP"), Failure);
  EXPECT_TRUE(disk.File() == filler + With({"G1010,POWER"}) && disk.Store.CfgText == disk.File());
  EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G11100", "U").Done());
  EXPECT_EQ(disk.File().size(), kMostCharacters);
}

TEST(AddCommand, PutsNothingAheadOfGeneral) {
  const std::string head = Protocol("NEC", {"G10,EMPTY"}) + Protocol("JVC", {"G0110,UP"});
  StoreOnDisk disk(head + With({"G10,EMPTY"}));
  EXPECT_TRUE(AddCommand(disk.Store, "NEC", "G1010", "POWER").Done());
  EXPECT_EQ(AddCommand(disk.Store, "JVC", "G1110", "DOWN").Refused, Refusal::NoSection);
  EXPECT_EQ(disk.File(), head + With({"G1010,POWER"}));
}

/// Lines of a text without their ends, in their order in the alphabet.
Commands SortedLines(std::string text) {
  std::erase(text, '\r');
  Commands lines;
  for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
    end = text.find('\n', begin);
    lines.push_back(text.substr(begin, end - begin));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST(Changes, LoseNoLineWhereLineEndsAreDamaged) {
  const std::string whole = With({"G1010,POWER", "G1110,UP"});
  std::string lfOnly = whole;
  std::erase(lfOnly, '\r');
  std::vector<std::string> texts = {lfOnly};
  for (std::size_t cr = whole.find('\r'); cr != std::string::npos; cr = whole.find('\r', cr + 1)) {
    texts.push_back(std::string(whole).erase(cr, 1));
  }
  for (const std::string& text : texts) {
    StoreOnDisk disk(text);
    SetGeneralValue(disk.Store, "COMPORT", "1");
    const bool added = AddCommand(disk.Store, "NEC", "G0101", "DOWN").Done();
    const bool deleted = DeleteCommand(disk.Store, "NEC", "UP").Done();
    Commands expected = {"G1010,POWER"};
    if (added) expected.push_back("G0101,DOWN");
    if (!deleted) expected.push_back("G1110,UP");
    EXPECT_EQ(SortedLines(disk.File()), SortedLines(With(expected))) << disk.File();
  }
}

TEST(WindowSteps, KeepThePlaceholderInTheFileUntilTheNextSave) {
  StoreOnDisk disk(With({"G10,EMPTY"}));
  CfgStore& store = disk.Store;
  store.CurProtocol = "NEC";
  store.CurCommand = "POWER";
  EXPECT_TRUE(StoreCommand(store, "NEC", "G1010", "POWER"));
  EXPECT_EQ(store.CfgText, With({"G10,EMPTY", "G1010,POWER"}));
  DropPlaceholder(store);
  EXPECT_EQ(store.CurCommand, "EMPTY");
  EXPECT_EQ(store.CfgText, With({"G1010,POWER"}));
  EXPECT_EQ(disk.File(), With({"G10,EMPTY", "G1010,POWER"}));

  store.CurCommand = "POWER";
  DropPlaceholder(store);
  EXPECT_EQ(store.CfgText, With({"G1010,POWER"}));
  EXPECT_TRUE(CheckDelete(store).Done());
  EXPECT_TRUE(RemoveCommand(store));
  EXPECT_EQ(store.CfgText, With({"G10,EMPTY"}));
  EXPECT_EQ(disk.File(), With({}));
  store.CurCommand = "EMPTY";
  EXPECT_EQ(RefusalText(CheckDelete(store)), "There are no more commands to delete");
  SaveConfig(store);
  EXPECT_EQ(disk.File(), With({"G10,EMPTY"}));
}

TEST(DeleteCommand, LeavesThePlaceholderInAnEmptySection) {
  StoreOnDisk disk(With({"# above", "G1010,POWER", "# below"}));
  EXPECT_TRUE(DeleteCommand(disk.Store, "NEC", "POWER").Done());
  EXPECT_EQ(disk.File(), With({"# above", "G10,EMPTY", "# below"}));
  for (const auto& [protocol, name, text] : std::vector<std::tuple<std::string, std::string, std::string>>{
           {"NEC", "EMPTY", "There are no more commands to delete"},
           {"NEC", "POWER", "The protocol has no command POWER."},
           {"template", "EMPTY", "This protocol is read-only."},
           {"Recorded", "EMPTY", "This is a virtual read-only protocol!"},
           {"JVC", "UP", "The configuration has no whole section of a protocol JVC."}}) {
    EXPECT_EQ(RefusalText(DeleteCommand(disk.Store, protocol, name)), text);
  }
  EXPECT_EQ(disk.File(), With({"# above", "G10,EMPTY", "# below"}));
}

TEST(WindowSteps, PutThePlaceholderBackInItsPlaceInAFileWithoutBlanks) {
  std::string text = With({"G1010,POWER"});
  for (std::size_t i = 0; (i = text.find("= ", i)) != std::string::npos;) text.erase(i + 1, 1);
  StoreOnDisk disk(text);
  disk.Store.CurProtocol = "NEC";
  disk.Store.CurCommand = "POWER";
  EXPECT_TRUE(RemoveCommand(disk.Store));
  SaveConfig(disk.Store);
  EXPECT_EQ(disk.File(), With({"G10,EMPTY"}));
}

TEST(FailedSave, ChangesBothTextAndFileOrNeither) {
  struct Change {
    std::function<void(CfgStore&)> Run;
    std::string Text, File;  // once the file has the change
  };
  const std::string before = With({"G1010,POWER"}), added = With({"G1010,POWER", "G1110,UP"});
  const std::vector<Change> changes = {
      {[](CfgStore& store) { AddCommand(store, "NEC", "G1110", "UP"); }, added, added},
      {[](CfgStore& store) { StoreCommand(store, "NEC", "G1110", "UP"); }, added, added},
      {[](CfgStore& store) { DeleteCommand(store, "NEC", "POWER"); }, With({"G10,EMPTY"}),
       With({"G10,EMPTY"})},
      {[](CfgStore& store) { RemoveCommand(store); }, With({"G10,EMPTY"}), With({})}};
  for (const Change& change : changes) {
    tests::FakeDisk disk;
    CfgStore store("/home/keplo.cfg", disk);
    store.CurProtocol = "NEC";
    store.CurCommand = "POWER";
    const auto run = [&](int failAt) {
      disk.Put("keplo.cfg", before);
      store.CfgText = before;
      store.FileText = before;
      store.CfgPos2 = 0;
      disk.FailAt(failAt, false);
      change.Run(store);
    };
    run(0);
    const int operations = disk.Operations(), place = store.CfgPos2;
    for (int failAt = 1; failAt <= operations; ++failAt) {
      EXPECT_THROW(run(failAt), Failure);
      const bool changed = failAt == operations;  // the flush of the folder, behind the change
      EXPECT_EQ(store.CfgText, changed ? change.Text : before) << failAt;
      EXPECT_EQ(disk.Files(),
                (std::map<std::string, std::string>{{"keplo.cfg", changed ? change.File : before}}));
      EXPECT_EQ(store.CfgPos2, changed ? place : 0) << failAt;
    }
  }
}

TEST(RemoveCommand, RefusesAheadOfTheSaveIfThePlaceholderDoesNotFit) {
  const std::string full = std::string(kMostCharacters - With({"G10,A"}).size(), '#') + With({"G10,A"});
  StoreOnDisk disk(full);
  disk.Store.CurProtocol = "NEC";
  disk.Store.CurCommand = "A";
  EXPECT_THROW(RemoveCommand(disk.Store), Failure);
  EXPECT_TRUE(disk.Store.CfgText == full && disk.File() == full);
}

TEST(RenameCommand, ChangesTheNameAlone) {
  StoreOnDisk disk(With({"# above", "G1010,POWER", "G1110,UP", "# below"}));
  struct Case {
    std::string Protocol, Name, NewName, Refused;
  };
  for (const Case& c : std::vector<Case>{
           {"NEC", "POWER", "UP", "This command name is in use for the current protocol."},
           {"NEC", "POWER", "A B", "Use only a-z, A-Z,'-','_' characters"},
           {"NEC", "DOWN", "LEFT", "The protocol has no command DOWN."},
           {"Template", "EMPTY", "LEFT", "This protocol is read-only."},
           {"JVC", "POWER", "LEFT", "The configuration has no whole section of a protocol JVC."},
           {"NEC", "power", " POWE ", ""}}) {
    EXPECT_EQ(RefusalText(RenameCommand(disk.Store, c.Protocol, c.Name, c.NewName)), c.Refused) << c.NewName;
  }
  EXPECT_EQ(disk.File(), With({"# above", "G1010,POWE", "G1110,UP", "# below"}));
  StoreOnDisk empty(With({"G10,EMPTY"}));
  EXPECT_EQ(RenameCommand(empty.Store, "NEC", "EMPTY", "LEFT").Refused, Refusal::NoSuchCommand);
}

TEST(Changes, RefuseANameThatMeansTwo) {
  const Commands commands = {"G1010,Power", "G1110,POWER", "G1111,UP", "G0001,UP", "G0111,LEFT"};
  StoreOnDisk disk(With(commands));
  EXPECT_EQ(DeleteCommand(disk.Store, "NEC", "power").Refused, Refusal::CommandTwice);
  EXPECT_EQ(RenameCommand(disk.Store, "NEC", "UP", "DOWN").Refused, Refusal::CommandTwice);
  disk.Store.CurProtocol = "NEC";
  disk.Store.CurCommand = "UP";
  EXPECT_EQ(CheckDelete(disk.Store).Refused, Refusal::CommandTwice);
  disk.Write(Config(Protocol("NEC", commands) + Protocol("nec", {"G0101,UP"})));
  LoadConfig(disk.Store);
  disk.Store.CurCommand = "LEFT";
  EXPECT_EQ(CheckDelete(disk.Store).Refused, Refusal::SectionTwice);
  EXPECT_EQ(DeleteCommand(disk.Store, "nec", "UP").Refused, Refusal::SectionTwice);
  EXPECT_EQ(AddCommand(disk.Store, "NEC", "G0110", "DOWN").Refused, Refusal::SectionTwice);
  disk.Write(With(commands));
  LoadConfig(disk.Store);
  EXPECT_TRUE(DeleteCommand(disk.Store, "NEC", "POWER").Done()) << "exactly one of them";
  EXPECT_EQ(disk.File(), With({"G1010,Power", "G1111,UP", "G0001,UP", "G0111,LEFT"}));
}

}  // namespace
}  // namespace keplo
