#include <gtest/gtest.h>

#include "config/cfg_store.h"
#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/learn.h"
#include "config/merge_changes.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "config/store_undo.h"
#include "config/values.h"
#include "failure.h"

namespace keplo {
namespace {

using tests::Config;
using tests::Protocol;
using tests::Replaced;
using tests::StoreOnDisk;

const std::string kNec = Protocol("NEC", {"G1010,POWER", "G1100,UP"});
const std::string kSony = Protocol("SONY", {"G0011,MUTE"});
const std::string kBase = Config(kNec + kSony);
const std::string kMore = Replaced(kBase, "G0011,MUTE\r\n", "G0011,MUTE\r\nG0111,DOWN\r\n");

std::string Selecting(const std::string& text, const std::string& index) {
  return Replaced(text, "PROTOCOL= 0", "PROTOCOL= " + index);
}

TEST(MergeChanges, TakesBothUnlessTheyMeet) {
  struct Case {
    std::string Name, Mine, Theirs, Merged;
  };
  const std::string conflict;
  const std::string setting = Replaced(kBase, "COMPORT= 1", "COMPORT= 7");
  const std::string withoutUp = Replaced(kBase, "G1100,UP\r\n", "");
  const std::string jvc = Protocol("JVC", {"G10,EMPTY"});
  for (const Case& c : std::vector<Case>{
           {"nothing of mine", kBase, kMore, kMore},
           {"nothing of theirs", kMore, kBase, kMore},
           {"the same", kMore, kMore, kMore},
           {"two settings", setting, Replaced(kBase, "VEXIL= 0", "VEXIL= 2"),
            Replaced(setting, "VEXIL= 0", "VEXIL= 2")},
           {"one setting", setting, Replaced(kBase, "COMPORT= 1", "COMPORT= 8"), conflict},
           {"neighbours", setting, Replaced(kBase, "PROTOCOL= 0", "PROTOCOL= 1"), conflict},
           {"two sections", withoutUp, kMore, Replaced(kMore, "G1100,UP\r\n", "")},
           {"the section is gone", withoutUp, Config(kSony), conflict},
           {"one code", Replaced(kBase, "G1100,UP\r\n", "G1100,UP\r\nG0111,UP2\r\n"), kMore, conflict},
           {"selection", Selecting(kBase, "1"), kMore, Selecting(kMore, "1")},
           {"both select", Selecting(kBase, "1"), Selecting(kMore, "2"), Selecting(kMore, "1")},
           {"the selected one moves", Selecting(kBase, "1"), Config(jvc + kNec + kSony),
            Selecting(Config(jvc + kNec + kSony), "2")},
           {"the selected one is gone", Selecting(kBase, "1"), Config(kNec), Config(kNec)},
           {"no section is selected", Selecting(kBase, "3"), Config(kNec), Selecting(Config(kNec), "2")},
           {"not whole", kBase, kBase.substr(0, kBase.size() / 2), conflict}}) {
    EXPECT_EQ(MergeChanges(kBase, c.Mine, c.Theirs).value_or(conflict), c.Merged) << c.Name;
  }
}

/// A store with a file that another program writes.
class OtherProgram : public ::testing::Test {
 protected:
  StoreOnDisk disk_{kBase};
  CfgStore& store_ = disk_.Store;
  StoreUndo undo_{store_};

  /// The names of the folder; a copy of a text that was put aside is one more.
  int Files() const {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator(disk_.Folder()), {}));
  }
  template <typename Action>
  void Change(Action action) {
    const std::string before = store_.CfgText;
    action();
    undo_.Remember(before);
  }
};

TEST_F(OtherProgram, IsNoticedAndTakenIn) {
  EXPECT_FALSE(HasFileChanged(store_));
  ASSERT_TRUE(ReplaceValueAt(store_, FindNoCase("PROTOCOL=", store_.CfgText, 1), "1"));
  disk_.Write(kMore);
  EXPECT_TRUE(HasFileChanged(store_));
  EXPECT_TRUE(ReloadConfig(store_));
  EXPECT_EQ(store_.CfgText, Selecting(kMore, "1")) << "what is unsaved stays";
  EXPECT_TRUE(store_.TookInOtherText);
  EXPECT_FALSE(HasFileChanged(store_));
  SaveConfig(store_);
  EXPECT_EQ(disk_.File(), Selecting(kMore, "1"));
  EXPECT_TRUE(HasFileChanged(store_)) << "nobody has looked since the save";
  EXPECT_FALSE(ReloadConfig(store_) || HasFileChanged(store_));

  disk_.Write("half a file");
  EXPECT_THROW(ReloadConfig(store_), Failure);
  EXPECT_FALSE(HasFileChanged(store_)) << "it is told once";
  EXPECT_EQ(store_.CfgText, Selecting(kMore, "1"));
}

TEST_F(OtherProgram, KeepsItsTextWhereNothingWasChanged) {
  for (const std::string& other : {kMore, std::string("half a file")}) {
    disk_.Write(other);
    SaveConfig(store_);
    EXPECT_EQ(disk_.File(), other);
    EXPECT_EQ(store_.CfgText, kMore);
    EXPECT_EQ(Files(), 1);
  }
}

TEST_F(OtherProgram, KeepsItsCommandBesideAChange) {
  disk_.Write(kMore);
  store_.CurProtocol = "NEC";
  for (const std::string name : {"POWER", "UP"}) {
    store_.CurCommand = name;
    ASSERT_TRUE(RemoveCommand(store_));
  }
  const std::string emptied = Replaced(kMore, "G1010,POWER\r\nG1100,UP\r\n", "G10,EMPTY\r\n");
  EXPECT_EQ(store_.CfgText, emptied);
  SaveConfig(store_);
  EXPECT_EQ(disk_.File(), emptied);
  EXPECT_EQ(Files(), 1);
}

TEST_F(OtherProgram, KeepsThePlaceOfThePlaceholderWhenLinesComeInBeforeIt) {
  disk_.Write(Replaced(Config(kSony), "[SONY]", "# another comment\r\n[SONY]"));
  LoadConfig(store_);
  const std::string other = Replaced(disk_.File(), "[General]\r\n", "; head\r\n[General]\r\n");
  disk_.Write(other);
  store_.CurProtocol = "SONY";
  store_.CurCommand = "MUTE";
  ASSERT_TRUE(RemoveCommand(store_));
  EXPECT_EQ(ListProtocols(store_.CfgText), ListProtocols(other));
  EXPECT_NE(store_.CfgText.find("\r\nG10,EMPTY\r\n"), std::string::npos) << store_.CfgText;
}

TEST_F(OtherProgram, IsNotUndone) {
  EXPECT_NE(undo_.Undo(), "");
  Change([&] { AddCommand(store_, "NEC", "G1110", "DOWN"); });
  SetGeneralValue(store_, "COMPORT", "7");
  disk_.Write(Replaced(disk_.File(), "G0011,MUTE\r\n", "G0011,MUTE\r\nG0111,LOW\r\n"));
  EXPECT_EQ(undo_.Undo(), "");
  const std::string undone = Replaced(kBase, "COMPORT= 1", "COMPORT= 7");
  EXPECT_EQ(disk_.File(), Replaced(undone, "G0011,MUTE\r\n", "G0011,MUTE\r\nG0111,LOW\r\n"));
  EXPECT_EQ(store_.CfgText, disk_.File());
  EXPECT_FALSE(undo_.CanUndo());
}

TEST_F(OtherProgram, RefusesAnUndoWhereItChangedTheSameLines) {
  Change([&] { DeleteCommand(store_, "NEC", "UP"); });
  const std::string after = Replaced(disk_.File(), "G1010,POWER\r\n", "G1010,POWER\r\nG0001,NEW\r\n");
  disk_.Write(after);
  EXPECT_NE(undo_.Undo(), "");
  EXPECT_EQ(disk_.File(), after);
  EXPECT_TRUE(undo_.CanUndo());
}

TEST_F(OtherProgram, IsNotMetByAnUndoOfTheWindowsOwnChanges) {
  const auto windowSaves = [&] {
    store_.CurProtocol = "Empty";
    ASSERT_TRUE(StoreCommand(store_, "Empty", "G1111", "ON"));
    store_.CurCommand = "ON";
    DropPlaceholder(store_);
  };
  const auto windowDeletes = [&] {
    store_.CurProtocol = "SONY";
    store_.CurCommand = "MUTE";
    ASSERT_TRUE(RemoveCommand(store_));
  };
  const std::string text = Config(kNec + kSony + Protocol("Empty", {"G10,EMPTY"}));
  const std::vector<std::function<void()>> changes = {windowSaves, windowDeletes,
                                                      [&] { DeleteProtocol(store_, "NEC"); },
                                                      [&] { RenameCommand(store_, "NEC", "POWER", "OFF"); }};
  for (const auto& change : changes) {
    disk_.Write(text);
    LoadConfig(store_);
    Change(change);
    EXPECT_NE(store_.CfgText, text);
    ASSERT_TRUE(ReplaceValueAt(store_, FindNoCase("PROTOCOL=", store_.CfgText, 1), "2"));
    EXPECT_EQ(undo_.Undo(), "");
    EXPECT_EQ(disk_.File(), Selecting(text, "2"));
    EXPECT_EQ(store_.CfgText, disk_.File());
  }
}

}  // namespace
}  // namespace keplo
