#include "config/commands.h"

#include <gtest/gtest.h>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "config/send_as_line.h"
#include "config/valid_names.h"
#include "signal/first_analysis.h"
#include "signal/send_as.h"

namespace keplo::tests {
namespace {

const std::string kTwo = Config(Protocol("NEC", {"G1010,POWER", "G1100,UP", "G1111,POWER-OFF"}) +
                                Protocol("SONY", {"G0011,MUTE", "G0101,EMPTY"}));
/// The description holds what a search could take for commands.
const std::string kDescribed = Replaced(kTwo, "made for", "one, G, POWER, POWER-OFF, UP ");

TEST(Names, AreTrimmedAndChecked) {
  const auto check = [](bool (*isValid)(std::string&), const Texts& texts, bool valid) {
    for (const std::string& text : texts) {
      std::string argument = text;
      EXPECT_EQ(isValid(argument), valid) << text;
      EXPECT_EQ(argument, Trimmed(text));
    }
  };
  check(IsValidName, {" A-b_9 ", "", "  ", "az09AZ"}, true);
  check(IsValidName, {"A=B", "A[B", "a b", " a,b", "a\xC4", "@", "`", ":", "{", "/"}, false);
  check(IsValidCode, {" G10 ", "G10g11", "1011"}, true);
  check(IsValidCode, {"", "G1", " G1 ", "G1x0", "G1X0", "G10G11"}, false);
}

TEST(CountCommands, CountsTheCommasAfterTheLastKey) {
  const auto count = [](const std::string& text, const std::string& protocol) {
    Stored stored(text, protocol);
    return CountCommands(stored.Store);
  };
  EXPECT_EQ(count(kTwo, "nec"), 3);
  EXPECT_EQ(count(kTwo, "Template"), 1);
  EXPECT_EQ(count(kTwo, "JVC"), 0);
  EXPECT_EQ(count(kDescribed, "NEC"), 3) << "a comma in the description is no command";
  EXPECT_EQ(count(Replaced(kTwo, "GREPEAT", ""), "NEC"), 2) << "the next section's last key is taken";
  EXPECT_EQ(count(Protocol("NEC", {"G1010,POWER"}), "NEC"), 0) << "no header after the section";
}

TEST(DeleteCommandLine, RemovesTheLineOfTheNameAndNothingElse) {
  for (const std::string row :
       {"NEC|POWER|G1010,POWER\r\n", "NEC|POWER-OFF|G1111,POWER-OFF\r\n", "nec|up|G1100,UP\r\n"}) {
    const Texts parts = Parts(row);
    Stored stored(kDescribed, parts[0], parts[1]);
    DeleteCommandLine(stored.Store);
    const auto place = static_cast<int>(kDescribed.find(parts[2]));
    EXPECT_EQ(stored.Store.CfgText, Replaced(kDescribed, parts[2], ""));
    EXPECT_EQ(stored.Store.CfgPos, place + 1) << row;
    EXPECT_EQ(stored.Store.CfgPos2, place + static_cast<int>(parts[2].size())) << row;
    EXPECT_EQ(stored.File(), kDescribed) << "the file waits for a save";
  }
  std::string odd = Protocol("NEC", {"G1010,OLD"}) + kTwo;
  for (const std::string key : {"GPROTO= 0", "GREPEAT= 72"}) {
    odd.insert(odd.find(key, odd.find("[General]")) + key.size(), ", PAST");
  }
  for (const std::string protocol : {"NEC", "JVC", "Recorded", "General", "END", ""}) {
    for (const std::string command : {"POW", "MUTE", "OLD", "PAST", "GREPEAT", "1010", "test", ""}) {
      Stored stored(odd, protocol, command);
      DeleteCommandLine(stored.Store);
      EXPECT_EQ(stored.Store.CfgPos, 0) << protocol << " " << command;
      EXPECT_EQ(stored.Store.CfgText, odd);
    }
  }
}

TEST(ListCommands, WalksFromCommaToComma) {
  const auto list = [](const std::string& text, const std::string& protocol) {
    Texts listed;
    for (const LearnedCommand& c : ListCommands(text, protocol)) listed.push_back(c.Code + " " + c.Name);
    return listed;
  };
  EXPECT_EQ(list(kTwo, "NEC"), (Texts{"G1010 POWER", "G1100 UP", "G1111 POWER-OFF"}));
  EXPECT_EQ(list(kTwo, "JVC"), Texts());
  EXPECT_EQ(list(kTwo, "END"), Texts());
  EXPECT_EQ(list(Lines({"[X]", "# this, that", "G10, A ", "G11,", "[END]"}), "X"),
            (Texts{"# this  that", "G10  A ", "G11 "}));
  EXPECT_EQ(ShownCode(kDescribed, "NEC", "POWER"), "G1010");
  EXPECT_EQ(ShownCode(kTwo, "NEC", "OFF"), "G1111") << "the first line with the text";
  EXPECT_EQ(ShownCode(kTwo, "JVC", "POWER"), std::nullopt);
  EXPECT_EQ(ShownCode(kTwo, "NEC", "END]"), std::nullopt) << "no comma after it";
  const std::string later = Config(Protocol("NEC", {"G1010,POWER"}) + Protocol("SONY", {"G0011,MUTE"}));
  EXPECT_EQ(ShownCode(later, "NEC", "MUTE"), "G0011") << "of another section";
}

TEST(LookupCommand, NamesTheCommandOfACode) {
  Stored stored(Replaced(kTwo, "VEXIL", "G777,BAIT\r\nVEXIL"));
  for (const std::string row : {"1100|0|NEC&UP", "11|0|NEC&UP", "1110|2|NEC&UP", "1|2|NEC&POWER",
                                "1110|0|-&-", "10101|0|-&-", "|0|-&-", "777|0|General&BAIT"}) {
    stored.Store.CurProtocol = stored.Store.CurCommand = "-";
    const bool found = LookupCommand(stored.Store, Parts(row)[0], Parts(row)[1] == "2" ? kRc5 : kNec);
    EXPECT_EQ(found, Parts(row)[2].substr(0, 3) == "NEC") << row;
    EXPECT_EQ(stored.Store.CurProtocol + "&" + stored.Store.CurCommand, Parts(row)[2]) << row;
  }
}

TEST(FindCommand, IgnoresTheHeaderAndTruncatedLines) {
  const auto find = [](const std::string& text, const std::string& code, int limit, Analysis readBy) {
    const std::optional<FoundCommand> found = FindCommand(text, code, limit, readBy);
    return found ? found->Reference() : "none";
  };
  const std::string text = Lines({"[A]", "G1010,UP", "[END]"});
  EXPECT_EQ(find(text, "1010", 10, Analysis::First), "A&UP");
  EXPECT_EQ(find(text, "101", 10, Analysis::First), "none") << "the match ends at position 10";
  EXPECT_EQ(find(text, "101", 5, Analysis::First), "A&UP");
  EXPECT_EQ(find(text, "101", 5, Analysis::Second), "none") << "another code begins with it";
  EXPECT_EQ(find(text, "1010", 5, Analysis::Second), "A&UP");
  EXPECT_EQ(find("0123456789 [A] G1010", "101", 10, Analysis::First), "none") << "no comma";
  EXPECT_EQ(find("0123456789 G1010,UP\r\n", "101", 10, Analysis::First), "none") << "no header";
  EXPECT_EQ(find("[]\r\n01234567 G1010,", "101", 10, Analysis::First), "&");
}

TEST(WalkSections, EndsAtTheClosingHeaderInCapitals) {
  const std::string open = Replaced(Replaced(kTwo, "[END]", "[End]"), "made for a", "see [this");
  EXPECT_EQ(WalkSections(kTwo).Ended, WalkEnd::ClosingHeader);
  EXPECT_EQ(WalkSections(open).Names, (Texts{"NEC", "this tes", "SONY", "Template", "End"}));
  EXPECT_EQ(WalkSections(open).Ended, WalkEnd::NoMoreHeaders);
  EXPECT_EQ(WalkSections("[NEC]\r\n[END]\r\n").Ended, WalkEnd::NoGeneral);
  EXPECT_TRUE(IsWhole(kTwo));
  EXPECT_FALSE(IsWhole(Replaced(kTwo, "[END]", "[END)"))) << "a save would cut after the previous bracket";
}

TEST(LoadProtocolParams, KeepsWhatItReadUpToAMissingKey) {
  std::string text = Config(Lines({"[Zap]", "# x", "GPROTO= 1", "SENDPLS= 600.9", "REPEAT= 99999",
                                   "BITG= ", "BIT0= 01", "BIT1= 011", "GREPEAT=-5", "", "G10,EMPTY", ""}));
  text.erase(text.rfind("BIT0="), 5);
  ProtocolParams params;
  std::int16_t kind = 99;
  for (const std::string row : {"ZAP|1 600 32767 -5 /01/011/", "Recorded|1 600 32767 -5 /01/011/",
                                "Template|0 560 0 -5 1100/01/011/1"}) {
    EXPECT_EQ(LoadProtocolParams(text, Parts(row)[0], params, kind), Parts(row)[0] == "ZAP");
    std::string read;
    for (const int number : {kind, params.SENDPLS, params.REPEAT, params.GREPEAT}) {
      read += std::to_string(number) + " ";
    }
    EXPECT_EQ(read + params.BITG + "/" + params.BIT0 + "/" + params.BIT1 + "/" + params.BitTail,
              Parts(row)[1]);
  }
}

TEST(WithSendAs, ChangesNoOtherCodeOfTheSection) {
  Stored stored(Config(Protocol("NEC", {"G1010,UP"}) + Protocol("New", {"G10,EMPTY"})));
  // What is learned in what way, or deleted; then the ways of 1010, 1100, 0011 and 110011.
  for (const std::string row : {"G1100|2|/2//", "G0011|2|/2/2/", "G1100|delete|//2/", "G1100||//2/",
                                "G110011|3|//2/3", "G0011|delete|///3"}) {
    const std::string code = Parts(row)[0], way = Parts(row)[1];
    EXPECT_TRUE((way == "delete" ? DeleteCommand(stored.Store, "NEC", "N" + code)
                                 : AddCommand(stored.Store, "NEC", code, "N" + code, Analysis::Second, way))
                    .Done());
    const std::string line = SendAsOf(stored.Store.CfgText, *FindSection(stored.Store.CfgText, "NEC"));
    std::string ways;
    for (const char* each : {"1010", "/1100", "/0011", "/110011"})
      ways.append(*each == '/' ? "/" : "").append(WayOf(each + (*each == '/'), line));
    EXPECT_EQ(ways, Parts(row)[2]) << row << " in " << line;
  }
  const std::string all = WithSendAs(stored.Store.CfgText, "New", "G1111", "2<");
  EXPECT_NE(all.find("G10,EMPTY\r\nSENDAS= 2 2<:"), std::string::npos) << all;
}

}  // namespace
}  // namespace keplo::tests
