#include "config/commands.h"

#include <gtest/gtest.h>

#include "config/check_config.h"
#include "config/lookup.h"
#include "config/names.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config_builder.h"

namespace keplo {
namespace {

using tests::Config;
using tests::Lines;
using tests::Protocol;
using tests::StoreOnDisk;
using Names = std::vector<std::string>;

std::string Without(std::string text, const std::string& line) {
  return text.erase(text.find(line), line.size());
}

/// Code and name of a section's commands, one text each.
Names Listed(const std::string& text, const std::string& protocol) {
  Names names;
  for (const LearnedCommand& command : ListCommands(text, protocol))
    names.push_back(command.Code + " " + command.Name);
  return names;
}

const std::string kTwoProtocols = Config(Protocol("NEC", {"G1010,POWER", "G1100,UP", "G1111,POWER-OFF"}) +
                                         Protocol("SONY", {"G0011,MUTE", "G0101,EMPTY"}));

TEST(Names, AreTrimmedAndChecked) {
  const auto check = [](bool (*isValid)(std::string&), const Names& texts, bool valid) {
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

TEST(CountCommands, CountsTheCommasBehindTheLastKey) {
  StoreOnDisk disk(kTwoProtocols);
  const auto count = [&](const std::string& protocol) {
    disk.Store.CurProtocol = protocol;
    return CountCommands(disk.Store);
  };
  EXPECT_EQ(count("nec"), 3);
  EXPECT_EQ(count("Template"), 1);
  EXPECT_EQ(count("JVC"), 0);
  disk.Store.CfgText.insert(disk.Store.CfgText.find("made for"), "one, two, ");
  EXPECT_EQ(count("NEC"), 3) << "a comma in the description is no command";
  disk.Store.CfgText.erase(disk.Store.CfgText.find("GREPEAT"), 7);
  EXPECT_EQ(count("NEC"), 2) << "without its last key a section is taken for the next";
  disk.Store.CfgText = Protocol("NEC", {"G1010,POWER"});
  EXPECT_EQ(count("NEC"), 0) << "no header behind the section";
}

TEST(DeleteCommandLine, RemovesTheLineOfTheName) {
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"NEC", "POWER", "G1010,POWER\r\n"},
      {"NEC", "POWER-OFF", "G1111,POWER-OFF\r\n"},
      {"nec", "up", "G1100,UP\r\n"}};
  std::string described = kTwoProtocols;  // the description came to hold the names, ahead of their lines
  described.insert(described.find("made for"), "G, POWER, POWER-OFF, UP ");
  for (const auto& [protocol, command, line] : cases) {
    StoreOnDisk disk(described);
    disk.Store.CurProtocol = protocol;
    disk.Store.CurCommand = command;
    DeleteCommandLine(disk.Store);
    EXPECT_EQ(disk.Store.CfgText, Without(described, line));
    EXPECT_EQ(disk.Store.CfgPos, static_cast<int>(described.find(line)) + 1);
    EXPECT_EQ(disk.Store.CfgPos2, static_cast<int>(described.find(line) + line.size()));
    EXPECT_EQ(disk.File(), described) << "the file waits for a save";
  }
}

TEST(DeleteCommandLine, RemovesNothingButACommandLineOfTheSection) {
  StoreOnDisk disk(kTwoProtocols);
  for (const std::string protocol : {"NEC", "JVC", "Recorded", "General", "END", ""}) {
    for (const std::string command : {"POW", "MUTE", "GREPEAT", "1010", "COMPORT", "test", ""}) {
      disk.Store.CurProtocol = protocol;
      disk.Store.CurCommand = command;
      DeleteCommandLine(disk.Store);
      EXPECT_EQ(disk.Store.CfgPos, 0) << protocol << " " << command;
    }
  }
  EXPECT_EQ(disk.Store.CfgText, kTwoProtocols);
}

TEST(DeleteCommandLine, LeavesTheKeysAndTheHeadOfTheFile) {
  std::string text = Protocol("NEC", {"G1010,OLD"}) + kTwoProtocols;
  for (const std::string key : {"GPROTO= 0", "GREPEAT= 72"}) {
    text.insert(text.find(key, text.find("SONY")) + key.size(), ", PAST");
  }
  StoreOnDisk disk(text);
  for (const auto& [protocol, command] : {std::pair("SONY", "PAST"), std::pair("NEC", "OLD")}) {
    disk.Store.CurProtocol = protocol;
    disk.Store.CurCommand = command;
    DeleteCommandLine(disk.Store);
    EXPECT_EQ(disk.Store.CfgText, text) << command;
  }
}

TEST(ListCommands, WalksFromCommaToComma) {
  EXPECT_EQ(Listed(kTwoProtocols, "NEC"), (Names{"G1010 POWER", "G1100 UP", "G1111 POWER-OFF"}));
  EXPECT_EQ(Listed(kTwoProtocols, "JVC"), Names{});
  EXPECT_EQ(Listed(kTwoProtocols, "END"), Names{});
  const std::string edited = Lines({"[X]", "# this, that", "G10, A ", "G11,", "[END]"});
  EXPECT_EQ(Listed(edited, "X"), (Names{"# this  that", "G10  A ", "G11 "}));
  EXPECT_EQ(ShownCode(kTwoProtocols, "NEC", "POWER"), "G1010");
  EXPECT_EQ(ShownCode(kTwoProtocols, "NEC", "OFF"), "G1111") << "the first line with the text";
  std::string described = kTwoProtocols;
  described.insert(described.find("made for"), "UP POWER ");
  EXPECT_EQ(ShownCode(described, "NEC", "POWER"), "G1010") << "a description has no code";
  EXPECT_EQ(ShownCode(kTwoProtocols, "JVC", "POWER"), std::nullopt);
  EXPECT_EQ(ShownCode(kTwoProtocols, "NEC", "END]"), std::nullopt) << "no comma behind it";
}

TEST(LookupCommand, NamesTheCommandOfACode) {
  struct Case {
    std::string Code;
    std::int16_t Kind;
    bool Found;
    std::string Reference;
  };
  const std::vector<Case> cases = {{"1100", 0, true, "NEC&UP"}, {"11", 0, true, "NEC&UP"},
                                   {"1110", 2, true, "NEC&UP"}, {"1", 2, true, "NEC&POWER"},
                                   {"1110", 0, false, "-&-"},   {"10101", 0, false, "-&-"},
                                   {"", 0, false, "-&-"},       {"777", 0, false, "General&BAIT"}};
  std::string text = kTwoProtocols;
  StoreOnDisk disk(text.insert(text.find("VEXIL"), "G777,BAIT\r\n"));
  for (const Case& c : cases) {
    disk.Store.CurProtocol = disk.Store.CurCommand = "-";
    EXPECT_EQ(LookupCommand(disk.Store, c.Code, c.Kind), c.Found) << c.Code;
    EXPECT_EQ(disk.Store.CurProtocol + "&" + disk.Store.CurCommand, c.Reference) << c.Code;
  }
}

TEST(FindCommand, TakesNothingFromTheHeadOrFromATornText) {
  const std::string text = Lines({"[A]", "G1010,UP", "[END]"});
  EXPECT_TRUE(FindCommand(text, "1010", 10));
  EXPECT_FALSE(FindCommand(text, "101", 10)) << "the match ends at position 10";
  EXPECT_FALSE(FindCommand("0123456789 [A] G1010", "101", 10)) << "no comma";
  EXPECT_FALSE(FindCommand("0123456789 G1010,UP\r\n", "101", 10)) << "no header";
  EXPECT_TRUE(FindCommand(text, "101", 5));
  EXPECT_FALSE(FindCommand(text, "101", 5, Analysis::Second)) << "another code begins with it";
  EXPECT_TRUE(FindCommand(text, "1010", 5, Analysis::Second));
  const std::optional<FoundCommand> bare = FindCommand("[]\r\n01234567 G1010,", "101", 10);
  ASSERT_TRUE(bare);
  EXPECT_EQ(bare->Protocol + "&" + bare->Command, "&");
}

TEST(WalkSections, EndsAtTheClosingHeaderInCapitals) {
  EXPECT_EQ(ListProtocols(kTwoProtocols), (Names{"NEC", "SONY", "Template"}));
  EXPECT_EQ(WalkSections(kTwoProtocols).Ended, WalkEnd::ClosingHeader);
  std::string text = kTwoProtocols;
  text.replace(text.find("[END]"), 5, "[End]").replace(text.find("made for a"), 10, "see [this");
  EXPECT_EQ(ListProtocols(text), (Names{"NEC", "this tes", "SONY", "Template", "End"}));
  EXPECT_EQ(WalkSections(text).Ended, WalkEnd::NoMoreHeaders);
  EXPECT_EQ(WalkSections("[NEC]\r\n[END]\r\n").Ended, WalkEnd::NoGeneral);
}

TEST(LoadProtocolParams, KeepsWhatItReadUpToAMissingKey) {
  std::string text = Config(Lines({"[Zap]", "# x", "GPROTO= 1", "SENDPLS= 600.9", "REPEAT= 99999",
                                   "BITG= ", "BIT0= 01", "BIT1= 011", "GREPEAT=-5", "", "G10,EMPTY", ""}));
  ProtocolParams params;
  std::int16_t kind = 99;
  EXPECT_TRUE(LoadProtocolParams(text, "ZAP", params, kind));
  EXPECT_EQ(kind, 1);
  EXPECT_EQ(params.SENDPLS, 600);
  EXPECT_EQ(params.REPEAT, 32767);
  EXPECT_EQ(params.GREPEAT, -5);
  EXPECT_EQ(params.BITG + "/" + params.BIT0 + "/" + params.BIT1 + "/" + params.BitTail, "/01/011/");
  EXPECT_FALSE(LoadProtocolParams(text, "Recorded", params, kind));
  EXPECT_EQ(kind, 1);
  text.erase(text.rfind("BIT0="), 5);
  EXPECT_FALSE(LoadProtocolParams(text, "Template", params, kind));
  EXPECT_EQ(params.BITG + "/" + params.BIT0 + "/" + params.BitTail, "1100/01/1");
}

TEST(FirstConfiguration, IsWhole) {
  PosixFileSystem files;
  CfgStore store(KEPLO_SOURCE_DIR "/data/keplo.cfg", files);
  LoadConfig(store);
  Settings settings;
  EXPECT_TRUE(ReadSettings(store, settings).Complete());
  EXPECT_EQ(CheckConfig(store), "");
  EXPECT_EQ(ListProtocols(store.CfgText), (Names{"NEC", "SONY", "RC5", "Template"}));
  std::int16_t kind = 0, expected = 0;
  for (const std::string& protocol : ListProtocols(store.CfgText)) {
    ProtocolParams params;
    EXPECT_TRUE(LoadProtocolParams(store.CfgText, protocol, params, kind));
    EXPECT_EQ(kind, expected++) << protocol;
    for (const LearnedCommand& command : ListCommands(store.CfgText, protocol)) {
      if (protocol == "Template") continue;
      const auto found = FindCommand(store.CfgText, command.Code.substr(1), 100);
      EXPECT_EQ(found ? found->Protocol + "&" + found->Command : "", protocol + "&" + command.Name);
    }
  }
  StoreOnDisk disk(store.CfgText);
  SaveConfig(disk.Store);
  EXPECT_EQ(disk.File(), store.CfgText);
}

}  // namespace
}  // namespace keplo
