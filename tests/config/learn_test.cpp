#include "config/learn.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/script.h"
#include "failure.h"

namespace keplo::tests {
namespace {

/// A file with the given commands in its NEC section and a command MUTE in its SONY section.
std::string With(const Texts& commands) {
  return Config(Protocol("NEC", commands) + Protocol("SONY", {"G0011,MUTE"}));
}

TEST(Changes, ChangeOneLineInOneSave) {
  const auto changes = [](const std::string& before, const std::string& step, const std::string& after) {
    Stored stored(before);
    EXPECT_EQ(Do(stored.Store, step), "");
    EXPECT_EQ(stored.File(), after) << step;
    EXPECT_EQ(stored.Store.CfgText, stored.File());
  };
  for (const std::string other : {"G1010,POWER", "G0101,EMPTY", "G0101,EMPTY-TRAY", "G101,EMPTY"}) {
    changes(With({other, "# note"}), "add|nec| G1110 | UP ", With({other, "G1110,UP", "# note"}));
    changes(With({other}), "addWhole|NEC|G010|MUTE", With({other, "G010,MUTE"}));
  }
  changes(With({"G10,EMPTY", "# note"}), "add|NEC|G1010|POWER", With({"G1010,POWER", "# note"}));
  changes(With({"# note"}), "add|NEC|G1010|POWER", With({"# note", "G1010,POWER"}));
  changes(With({"G1010,POWER", "# note"}), "rename|NEC|power| POWE ", With({"G1010,POWE", "# note"}));
  changes(With({"# 1", "G1010,A", "# 2"}), "delete|NEC|A", With({"# 1", "G10,EMPTY", "# 2"}));
  changes(With({"G1010,Power", "G1110,POWER"}), "delete|NEC|POWER", With({"G1010,Power"}));

  const std::string head = Protocol("NEC", {"G10,EMPTY"});
  changes(head + With({"G10,EMPTY"}), "add|NEC|G1010|POWER", head + With({"G1010,POWER"}));
  const std::string keys = Replaced(With({}), "made for", "a, b "), last = "GREPEAT= 72\r\n";
  changes(keys, "add|NEC|G1010|POWER", Replaced(keys, last, last + "G1010,POWER\r\n"));
}

TEST(Changes, SayWhyTheyAreRefused) {
  const auto refuses = [](const std::string& reported, const std::string& file, const Texts& steps) {
    Stored stored(file);
    for (const std::string& step : steps) EXPECT_EQ(Do(stored.Store, step), reported) << step;
    EXPECT_EQ(stored.File(), file);
  };
  const std::string one = With({"G1010,POWER"}), none = With({"G10,EMPTY"}),
                    named = With({"G1010,Power", "G1110,POWER", "G1111,UP", "G0001,UP"});
  refuses("This protocol is read-only.", one,
          {"add|TEMPLATE|G1110|UP", "rename|Template|EMPTY|LEFT", "delete|template|EMPTY",
           "check|template|EMPTY"});
  refuses("This is a virtual read-only protocol!", one, {"add|recorded|G1110|UP", "delete|Recorded|EMPTY"});
  refuses("The code you want to save is invalid.", one,
          {"add|NEC|G1|UP", "add|NEC|G1x10|UP", "add|NEC|1110|UP", "add|NEC|g1110|UP", "add|NEC|G11,10|UP",
           "add|NEC|G11[10|UP", "add|NEC|G11=10|UP"});
  refuses("This command exist as POWER", one,
          {"add|NEC|G1010|UP", "add|NEC|G101|UP", "addWhole|NEC|G1010|UP"});
  refuses("This command exist as MUTE", one, {"add|NEC|G001|UP"});
  refuses("A new command needs a name.", one, {"add|NEC|G1110|"});
  refuses("Use only a-z, A-Z,'-','_' characters", one,
          {"add|NEC|G1110|U P", "add|NEC|G1110|UP[", "rename|NEC|POWER|A B"});
  refuses("This command name is in use for the current protocol.", one,
          {"add|NEC|G1110|  ", "add|NEC|G1110|power", "add|NEC|G1110|OWE", "add|NEC|G1110|repeat",
           "rename|NEC|POWER|repeat"});
  refuses("The configuration has no whole section of a protocol END.", one, {"add|END|G1110|UP"});
  refuses("The configuration has no whole section of a protocol General.", one, {"add|General|G1110|UP"});
  refuses("The configuration has no whole section of a protocol JVC.", Protocol("JVC", {"G0110,UP"}) + one,
          {"add|JVC|G1110|UP", "rename|JVC|POWER|LEFT", "delete|JVC|UP"});
  refuses("The protocol has no command DOWN.", one, {"rename|NEC|DOWN|LEFT", "delete|NEC|DOWN"});
  refuses("The protocol has no command EMPTY.", none, {"rename|NEC|EMPTY|LEFT"});
  refuses("There are no more commands to delete", none, {"delete|NEC|EMPTY", "check|NEC|EMPTY"});
  refuses("", one, {"check|JVC|UP", "check|NEC|DOWN"});
  refuses("The protocol has two commands with the name UP. Rename one of them in the file, and try again.",
          named, {"rename|NEC|UP|DOWN", "delete|NEC|UP", "check|NEC|UP"});
  refuses("The protocol has two commands with the name power. Rename one of them in the file, and try again.",
          named, {"delete|NEC|power"});
  refuses(
      "The configuration has two sections with the name NEC, since upper and lower case count alike. "
      "Rename one of them in the file, and try again.",
      Config(Protocol("NEC", {"G0111,LEFT"}) + Protocol("nec", {"G0101,UP"})),
      {"delete|NEC|LEFT", "check|NEC|LEFT"});
}

TEST(Changes, AreRefusedBeforeSavingIfTheTextIsDamaged) {
  for (const auto& [step, room] :
       {std::pair("add|NEC|G11100|UP", 10), {"remove|NEC|A", 0}, {"select|10", 0}}) {
    const std::string text = With({"G10,A"}),
                      full = std::string(kMostCharacters - text.size() - room, '#') + text;
    Stored stored(full);
    EXPECT_THROW(Do(stored.Store, step), Failure);
    EXPECT_TRUE(stored.File() == full && stored.Store.CfgText == full);
    EXPECT_TRUE(room == 0 || Do(stored.Store, "add|NEC|G11100|U").empty()) << "a character less fits";
  }
}

/// Lines of a text without their ends, in the order of the alphabet.
Texts SortedLines(std::string text) {
  std::erase(text, '\r');
  Texts lines;
  for (std::size_t begin = 0; begin < text.size(); begin += lines.back().size() + 1) {
    lines.push_back(text.substr(begin, text.find('\n', begin) - begin));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST(Changes, LoseNoLineIfLineEndsAreDamaged) {
  const std::string whole = With({"G1010,POWER", "G1110,UP"});
  Texts texts = {whole};
  std::erase(texts[0], '\r');
  for (std::size_t cr = whole.find('\r'); cr != std::string::npos; cr = whole.find('\r', cr + 1)) {
    texts.push_back(std::string(whole).erase(cr, 1));
  }
  for (const std::string& text : texts) {
    Stored stored(text);
    Do(stored.Store, "set|COMPORT|1");
    Texts expected = {"G1010,POWER"};
    if (Do(stored.Store, "add|NEC|G0101|DOWN").empty()) expected.emplace_back("G0101,DOWN");
    if (!Do(stored.Store, "delete|NEC|UP").empty()) expected.emplace_back("G1110,UP");
    EXPECT_EQ(SortedLines(stored.File()), SortedLines(With(expected))) << stored.File();
  }
}

TEST(WindowSteps, KeepThePlaceholderInTheFileUntilTheNextSave) {
  Stored stored(With({"G10,EMPTY"}));
  const auto leaves = [&](const std::string& step, const Texts& text, const Texts& file) {
    EXPECT_EQ(Do(stored.Store, step), "");
    EXPECT_EQ(stored.Store.CfgText, With(text)) << step;
    EXPECT_EQ(stored.File(), With(file)) << step;
  };
  leaves("store|NEC|G1010|POWER", {"G10,EMPTY", "G1010,POWER"}, {"G10,EMPTY", "G1010,POWER"});
  leaves("drop|NEC|POWER", {"G1010,POWER"}, {"G10,EMPTY", "G1010,POWER"});
  leaves("drop|NEC|POWER", {"G1010,POWER"}, {"G10,EMPTY", "G1010,POWER"});
  leaves("check|NEC|POWER", {"G1010,POWER"}, {"G10,EMPTY", "G1010,POWER"});
  leaves("remove|NEC|POWER", {"G10,EMPTY"}, {});
  leaves("save", {"G10,EMPTY"}, {"G10,EMPTY"});

  std::string noBlanks = With({"G1010,POWER"});
  for (std::size_t i = 0; (i = noBlanks.find("= ", i)) != std::string::npos;) noBlanks.erase(i + 1, 1);
  stored.Load(noBlanks);
  leaves("remove|NEC|POWER", {"G10,EMPTY"}, {});  // in its place, which the blanks have moved
}

TEST(FailedSave, ChangesBothTextAndFileOrNeither) {
  const std::string before = With({"G1010,POWER"}), added = With({"G1010,POWER", "G1110,UP"}),
                    emptied = With({"G10,EMPTY"}), sony = Config(Protocol("SONY", {"G0011,MUTE"}));
  const std::string lamp = Lines({"[Lamp]", "# ", "GPROTO= 1", "SENDPLS= 550", "REPEAT= 0", "BITG= 1",
                                  "BIT0= 01", "BIT1= 011", "GREPEAT= 0", "", "G10,EMPTY", ""}),
                    withLamp = Replaced(Replaced(before, "[Template]", lamp + "[Template]"), "PROTOCOL= 0",
                                        "PROTOCOL= 2");
  const auto changes = [&](const std::string& step, const std::string& text, const std::string& file) {
    Stored stored(before);
    const auto run = [&](int failAt) {
      stored.Load(before);
      stored.Store.CfgPos2 = 0;
      stored.Disk.FailAt(failAt, false);
      Do(stored.Store, step);
    };
    run(0);
    const int operations = stored.Disk.Operations(), place = stored.Store.CfgPos2;
    for (int failAt = 1; failAt <= operations; ++failAt) {
      EXPECT_THROW(run(failAt), Failure);
      const bool changed = failAt == operations;  // the flush of the folder, after the change
      EXPECT_EQ(stored.Store.CfgText, changed ? text : before) << step << failAt;
      EXPECT_EQ(stored.File(), changed ? file : before) << step << failAt;
      EXPECT_EQ(stored.Store.CfgPos2, changed ? place : 0) << step << failAt;
    }
  };
  changes("add|NEC|G1110|UP", added, added);
  changes("store|NEC|G1110|UP", added, added);
  changes("delete|NEC|POWER", emptied, emptied);
  changes("remove|NEC|POWER", emptied, With({}));
  changes("deleteProtocol|NEC", sony, sony);
  changes("addProtocol|Lamp", withLamp, withLamp);
}

}  // namespace
}  // namespace keplo::tests
