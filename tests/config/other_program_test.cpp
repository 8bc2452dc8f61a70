#include <gtest/gtest.h>

#include <random>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/merge_changes.h"
#include "config/protocols.h"
#include "config/script.h"
#include "config/store_undo.h"
#include "failure.h"

namespace keplo::tests {
namespace {

const std::string kNec = Protocol("NEC", {"G1010,POWER", "G1100,UP"});
const std::string kSony = Protocol("SONY", {"G0011,MUTE"});
const std::string kBase = Config(kNec + kSony);

std::string Selecting(const std::string& text, const std::string& index) {
  return Replaced(text, "PROTOCOL= 0", "PROTOCOL= " + index);
}
/// A text with a line put in after another one.
std::string After(const std::string& line, const std::string& text, const std::string& fresh) {
  return Replaced(text, line + "\r\n", line + "\r\n" + fresh + "\r\n");
}

const std::string kMore = After("G0011,MUTE", kBase, "G0111,DOWN");

TEST(MergeChanges, KeepsBothUnlessTheyOverlap) {
  const auto merges = [](const std::string& name, const std::string& mine, const std::string& theirs,
                         const std::string& merged) {
    EXPECT_EQ(MergeChanges(kBase, mine, theirs).value_or("conflict"), merged) << name;
  };
  const std::string port = Replaced(kBase, "COMPORT= 1", "COMPORT= 7"),
                    noUp = Replaced(kBase, "G1100,UP\r\n", ""), one = Selecting(kBase, "1"),
                    moved = Config(Protocol("JVC", {"G10,EMPTY"}) + kNec + kSony), nec = Config(kNec);
  merges("one of theirs between two of mine", Replaced(port, "VEXIL= 0", "VEXIL= 2"),
         Replaced(kBase, "DELAY= 10", "DELAY= 12"),
         Replaced(Replaced(port, "VEXIL= 0", "VEXIL= 2"), "DELAY= 10", "DELAY= 12"));
  merges("one setting", port, Replaced(kBase, "COMPORT= 1", "COMPORT= 8"), "conflict");
  merges("neighbours", port, Selecting(kBase, "1"), "conflict");
  merges("the section is gone", noUp, Config(kSony), "conflict");
  merges("one code", After("G1100,UP", kBase, "G0111,UP2"), kMore, "conflict");
  merges("selection", one, kMore, Selecting(kMore, "1"));
  merges("both select", one, Selecting(kMore, "2"), Selecting(kMore, "1"));
  merges("the selected one moves", one, moved, Selecting(moved, "2"));
  merges("the selected one is gone", one, nec, nec);
  merges("no section is selected", Selecting(kBase, "3"), nec, Selecting(nec, "2"));
  merges("not whole", kBase, kBase.substr(0, kBase.size() / 2), "conflict");
}

TEST(MergeChanges, MergesTwoSetsOfChangesLineByLine) {
  std::mt19937 generator(1);
  const auto line = [&] { return "G1" + std::to_string(generator() % 40) + ",X\r\n"; };
  int conflicts = 0;
  for (int round = 0; round < 500; ++round) {
    std::string base, mine, theirs, both;
    for (int change = 0; change < 8; ++change) {
      const std::string kept = line(), old = generator() % 3 != 0 ? line() : "",
                        fresh = generator() % 3 != 0 ? "G0" + line() : "";
      const auto whose = generator() % 3;
      base += kept + old;
      mine += kept + (whose == 0 ? fresh : old);
      theirs += kept + (whose == 1 ? fresh : old);
      both += kept + (whose < 2 ? fresh : old);
    }
    const auto merged = MergeChanges(Config(base), Config(mine), Config(theirs));
    EXPECT_EQ(merged.value_or(Config(both)), Config(both)) << round;
    conflicts += merged ? 0 : 1;
  }
  EXPECT_EQ(conflicts, 38) << "of lines that stand more than once";
}

/// A store with a file that another program writes.
class OtherProgram : public ::testing::Test {
 protected:
  Stored stored_{kBase};
  CfgStore& store_ = stored_.Store;
  StoreUndo undo_{store_};

  void Change(const std::vector<std::string>& steps) {
    undo_.Begin();
    for (const std::string& step : steps) ASSERT_EQ(Do(store_, step), "");
    undo_.End();
  }
  void ExpectBoth(const std::string& text) const {
    EXPECT_EQ(store_.CfgText, text);
    EXPECT_EQ(stored_.Disk.Files(), (std::map<std::string, std::string>{{"keplo.cfg", text}}));
  }
};

TEST_F(OtherProgram, IsNoticedAndReloaded) {
  EXPECT_FALSE(HasFileChanged(store_));
  Do(store_, "select|1");
  stored_.Write(kMore);
  EXPECT_TRUE(HasFileChanged(store_));
  EXPECT_EQ(ReloadConfig(store_), Reload::TakenIn);
  EXPECT_EQ(store_.CfgText, Selecting(kMore, "1")) << "what is unsaved stays";
  EXPECT_TRUE(store_.MergedOtherText);
  EXPECT_FALSE(HasFileChanged(store_));
  Do(store_, "save");
  ExpectBoth(Selecting(kMore, "1"));
  EXPECT_TRUE(HasFileChanged(store_)) << "nobody has looked since the save";
  EXPECT_EQ(ReloadConfig(store_), Reload::NothingNew);
  EXPECT_FALSE(HasFileChanged(store_));

  stored_.Write("half a file");
  EXPECT_THROW(ReloadConfig(store_), Failure);
  EXPECT_FALSE(HasFileChanged(store_)) << "it is reported once";
  EXPECT_EQ(store_.CfgText, Selecting(kMore, "1"));
}

TEST_F(OtherProgram, KeepsItsTextWhenAChangeIsSavedOrFails) {
  stored_.Write(kMore);
  Do(store_, "save");
  ExpectBoth(kMore);
  EXPECT_TRUE(store_.MergedOtherText);
  const std::string most = After("G0111,DOWN", kMore, "G0001,LOW");
  stored_.Write(most);
  for (const std::string step : {"remove|NEC|POWER", "remove|NEC|UP"}) ASSERT_EQ(Do(store_, step), "");
  const std::string emptied = Replaced(most, "G1010,POWER\r\nG1100,UP\r\n", "G10,EMPTY\r\n");
  EXPECT_EQ(store_.CfgText, emptied);
  Do(store_, "save");
  ExpectBoth(emptied);
  stored_.Write("half a file");
  Do(store_, "save");
  EXPECT_EQ(store_.CfgText, emptied);
  EXPECT_EQ(stored_.Disk.Files().size(), 1U);
  EXPECT_EQ(stored_.File(), "half a file");
}

TEST_F(OtherProgram, IsNotUndone) {
  EXPECT_NE(undo_.Undo(), "");
  Change({"add|NEC|G1110|DOWN"});
  Do(store_, "set|COMPORT|7");
  stored_.Write(After("G0011,MUTE", stored_.File(), "G0111,LOW"));
  EXPECT_EQ(undo_.Undo(), "");
  ExpectBoth(After("G0011,MUTE", Replaced(kBase, "COMPORT= 1", "COMPORT= 7"), "G0111,LOW"));
  EXPECT_FALSE(undo_.CanUndo());

  const std::string start = stored_.File();
  undo_.Begin();
  stored_.Write(After("G0011,MUTE", start, "G0101,NIGHT"));  // is met by the save of the change
  ASSERT_EQ(Do(store_, "add|NEC|G1110|DOWN"), "");
  undo_.End();
  Change({"delete|NEC|UP"});
  for (int step = 0; step < 2; ++step) EXPECT_EQ(undo_.Undo(), "") << "one step each";
  ExpectBoth(After("G0011,MUTE", start, "G0101,NIGHT"));
  EXPECT_FALSE(undo_.CanUndo());

  Change({"add|SONY|G1101|LOUD"});
  Change({"delete|NEC|UP"});
  const std::string sound = stored_.File(), sameLines = After("G1010,POWER", sound, "G0001,NEW");
  stored_.Write(sameLines);
  EXPECT_NE(undo_.Undo(), "");
  EXPECT_EQ(stored_.File(), sameLines);
  EXPECT_EQ(undo_.Undo(), "") << "the one before it";
  EXPECT_EQ(stored_.File(), Replaced(sameLines, "G1101,LOUD\r\n", ""));
  EXPECT_NE(undo_.Undo(), "");
  stored_.Write(Replaced(sound, "G1101,LOUD\r\n", ""));
  EXPECT_EQ(undo_.Undo(), "") << "the conflict is gone";
  ExpectBoth(After("G0011,MUTE", start, "G0101,NIGHT"));
}

TEST_F(OtherProgram, DoesNotPreventUndoOfOwnChanges) {
  const std::string text = Config(kNec + kSony + Protocol("Empty", {"G10,EMPTY"}));
  for (const std::vector<std::string>& steps :
       {std::vector<std::string>{"store|Empty|G1111|ON", "drop|Empty|ON"},
        {"remove|SONY|MUTE"},
        {"deleteProtocol|NEC"},
        {"rename|NEC|POWER|OFF"}}) {
    stored_.Load(text);
    Change(steps);
    Do(store_, "select|2");
    EXPECT_EQ(undo_.Undo(), "");
    ExpectBoth(Selecting(text, "2"));
  }
}

}  // namespace
}  // namespace keplo::tests
