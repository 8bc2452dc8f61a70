#include <gtest/gtest.h>

#include "config/check_config.h"
#include "config/commands.h"
#include "config/numbers.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/values.h"
#include "config_builder.h"
#include "failure.h"

namespace keplo {
namespace {

using tests::Config;
using tests::Replaced;
using tests::StoreOnDisk;

TEST(Numbers, AreReadFromTheHeadOfAValue) {
  for (const std::string none : {"", "COM1", ".7", "--1", "\t5", "- 5"}) {
    EXPECT_EQ(WithoutFraction<int>(none) + Rounded<int>(none), 0) << none;
  }
  const std::vector<std::tuple<std::string, int, int>> cases = {
      {"  7ab", 7, 7}, {"+1e3", 1, 1},      {"2.7", 2, 3},    {"-2.7", -2, -3},         {"2.49", 2, 2},
      {"2.5", 2, 2},   {"2.5000001", 2, 3}, {"-3.5", -3, -4}, {"32767.9", 32767, 32767}};
  for (const auto& [value, dropped, nearest] : cases) {
    EXPECT_EQ(WithoutFraction<std::int16_t>(value), dropped) << value;
    EXPECT_EQ(Rounded<std::int16_t>(value), nearest) << value;
  }
  EXPECT_EQ(WithoutFraction<std::int16_t>("-99999999999999999999999"), -32768);
  EXPECT_EQ(Rounded<std::int32_t>("99999999999"), 2147483647);
}

TEST(ReadSettings, TakesTheSixKeysInTheirOrder) {
  StoreOnDisk disk(
      "; a head\r\n[general]\r\ncomport=12\r\nPROTOCOL= 2.9\r\n# a line\r\nPROCDELAY= 30\r\nITYPE= 8.5\r\n"
      "BEEPON= 0\r\nVEXIL= 2.5\r\n[End]\r\n");
  Settings settings;
  EXPECT_TRUE(ReadSettings(disk.Store, settings).Complete());
  EXPECT_EQ(settings.ComPortNr, 12);
  EXPECT_EQ(settings.ProtocolIndex, 2);
  EXPECT_EQ(settings.ProcDelay, 30);
  EXPECT_EQ(settings.InterfaceType, 8);
  EXPECT_EQ(settings.ReceiverKind, 1);
  EXPECT_FALSE(settings.BeepOn);
  EXPECT_EQ(settings.VexilMode, 2);
  for (const std::string value : {"2", "-1", "1.6"}) {
    disk.Store.CfgText = Replaced(Config(""), "BEEPON= 1", "BEEPON= " + value);
    EXPECT_TRUE(ReadSettings(disk.Store, settings).Complete());
    EXPECT_FALSE(settings.BeepOn) << value << " leaves the beep as it was";
  }
}

TEST(ReadSettings, TakesTheAnalysisFromGeneralAlone) {
  const auto analysisOf = [](const std::string& old, const std::string& fresh) {
    StoreOnDisk disk(Replaced(Config(""), old, fresh));
    Settings settings;
    EXPECT_TRUE(ReadSettings(disk.Store, settings).Complete());
    return settings.Analysis;
  };
  EXPECT_EQ(analysisOf("VEXIL=", "VEXIL="), Analysis::First) << "without the key";
  EXPECT_EQ(analysisOf("COMPORT=", "analysis=1\r\nCOMPORT="), Analysis::Second) << "ahead of the six";
  EXPECT_EQ(analysisOf("VEXIL= 0\r\n", "VEXIL= 0\r\nANALYSIS= 1\r\n"), Analysis::Second);
  EXPECT_EQ(analysisOf("VEXIL= 0\r\n", "VEXIL= 0\r\nANALYSIS= 0\r\n"), Analysis::First);
  EXPECT_EQ(analysisOf("VEXIL= 0\r\n", "VEXIL= 0\r\nANALYSIS= 2\r\n"), Analysis::First);
  EXPECT_EQ(analysisOf("[END]", "[Other]\r\nANALYSIS= 1\r\n[END]"), Analysis::First) << "in another section";

  StoreOnDisk disk(Replaced(Config(""), "ITYPE=", "ANALYSIS= 1\r\nITIPE="));
  Settings settings;
  EXPECT_FALSE(ReadSettings(disk.Store, settings).Complete());
  EXPECT_EQ(settings.Analysis, Analysis::First) << "the reading stopped ahead of it";
}

TEST(ReadSettings, StopsAtTheFirstTextThatIsMissing) {
  struct Case {
    std::string Old, Fresh, Missing;
    int ComPortNr, InterfaceType;
  };
  const std::vector<Case> cases = {{"[END]", "[EN]", "[End]", 0, 0},
                                   {"[General]", "[Gen]", "[General]", 0, 0},
                                   {"COMPORT=", "COMPORT", "COMPORT=", 0, 0},
                                   {"PROCDELAY= 10\r\nITYPE= 9", "ITYPE= 9\r\nPROCDELAY= 10", "ITYPE=", 3, 0},
                                   {"VEXIL=", "ZONES=", "VEXIL=", 3, 9}};
  const std::string whole =
      Replaced(Replaced(Config(""), "COMPORT= 1", "COMPORT= 3"), "ITYPE= 0", "ITYPE= 9");
  StoreOnDisk disk(whole);
  for (const Case& c : cases) {
    disk.Store.CfgText = Replaced(whole, c.Old, c.Fresh);
    Settings settings;
    EXPECT_EQ(ReadSettings(disk.Store, settings).Missing, c.Missing);
    EXPECT_EQ(settings.ComPortNr, c.ComPortNr) << c.Missing;
    EXPECT_EQ(settings.InterfaceType, c.InterfaceType) << c.Missing;
  }
}

TEST(CheckConfig, TellsWhatIsWrongAndWhere) {
  const std::string whole = Config(tests::Protocol("NEC", {"G1010,POWER"}));
  std::string lfOnly = whole;
  std::erase(lfOnly, '\r');
  StoreOnDisk disk(whole);
  EXPECT_EQ(CheckConfig(disk.Store), "");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "[END] was not found"},
      {Replaced(whole, "[END]", ""), "[END] was not found"},
      {Replaced(whole, "[END]", "[End]"), "[END], in capitals, was not found"},
      {Replaced(Replaced(whole, "[END]", "[END)"), "a test", "an [end] test"),
       "[END], in capitals, was not found"},
      {Replaced(whole, "[General]", "[Gen]"), "[General] was not found."},
      {Replaced(whole, "COMPORT=", "COMPORT"), "COMPORT= was not found behind line 1"},
      {Replaced(whole, "ITYPE=", "TYPE="), "ITYPE= was not found behind line 4"},
      {Replaced(whole, "BIT0=", "BIT="), "BIT0= of [NEC] was not found behind line 14"},
      {Replaced(whole, "[Template]", "(Template)"), ""},
      {Replaced(whole, "a test", "[a] test"), "GPROTO= of [NEC] was not found behind line 10"},
      {Replaced(whole, "[Template]", "[nec]"), "[NEC] in line 9 and [nec] in line 21 have the same name"},
      {Replaced(whole, "a test", std::string(4000, '[')), "holds one [ after another"},
      {lfOnly, "line 1 does not end in CR LF"},
      {Replaced(whole, "ITYPE= 0\r", "ITYPE= 0"), "line 5 does not end in CR LF"},
      {Replaced(whole, "ITYPE= 0\r\n", "ITYPE= 0\r"), "line 5 does not end in CR LF"},
      {whole.substr(0, whole.size() - 1), "does not end in CR LF"},
      {whole.substr(0, whole.size() - 2), ""}};
  for (const auto& [text, told] : cases) {
    disk.Store.CfgText = text;
    const std::string damage = CheckConfig(disk.Store);
    EXPECT_EQ(damage.empty(), told.empty()) << damage;
    EXPECT_NE(damage.find(told), std::string::npos) << told << ": " << damage;
    EXPECT_TRUE(told.empty() || damage.rfind(disk.Store.Path.string() + ": ", 0) == 0) << damage;
  }
}

TEST(Searches, EndSoonInATextOfNothingButHeadersOrCommas) {
  for (const std::string part : {"[", "[a", "[\r\n", "[a]\r\n", "G1,A\r", ","}) {
    std::string run;
    while (run.size() <= kMostCharacters - Config("").size() - part.size()) run += part;
    const std::string text = Config(run);
    StoreOnDisk disk(text);
    CheckConfig(disk.Store);
    for (const std::string& protocol : ListProtocols(text)) {
      if (protocol.size() > 5) ListCommands(text, protocol);
    }
    SaveConfig(disk.Store);
    EXPECT_EQ(disk.File(), text);
  }
}

TEST(SetGeneralValue, ChangesOneLineOfTheFile) {
  for (const std::string old : {"COMPORT= 1", "COMPORT= 4294967296 ", "COMPORT= ", "COMPORT=1", "COMPORT="}) {
    StoreOnDisk disk(Replaced(Config(""), "COMPORT= 1", old));
    EXPECT_TRUE(SetGeneralValue(disk.Store, "comport", " 12 "));
    EXPECT_EQ(disk.File(), Replaced(Config(""), "COMPORT= 1", "COMPORT= 12")) << old;
    EXPECT_EQ(disk.Store.CfgText, disk.File());
  }
}

TEST(LoadConfig, WritesInTheBlanksThatAHandEditedFileLacks) {
  StoreOnDisk disk(
      "[General]\r\nCOMPORT=1\r\nVEXIL=\r\n[A]\r\n# GPROTO=1\r\nBITG= 1\r\nGREPEAT=-1\r\n[END]\r\n");
  SaveConfig(disk.Store);
  EXPECT_EQ(disk.File(),
            "[General]\r\nCOMPORT= 1\r\nVEXIL= \r\n[A]\r\n# GPROTO=1\r\nBITG= 1\r\nGREPEAT=-1\r\n[END]\r\n");
}

TEST(SetGeneralValue, ChangesNothingInADamagedFile) {
  for (const std::string& text :
       {Replaced(Config(""), "PROCDELAY=", "DELAY="), Replaced(Config(""), "[General]", "[Gen]"),
        std::string("[General]\r\nPROCDELAY= 10"), std::string("[General]\r\nPROCDELAY= 10\r")}) {
    StoreOnDisk disk(text);
    EXPECT_FALSE(SetGeneralValue(disk.Store, "PROCDELAY", "12"));
    EXPECT_EQ(disk.Store.CfgText + disk.File(), text + text);
  }
}

TEST(SetGeneralValue, TakesNoLineAlongWhereACrIsMissing) {
  std::string lfOnly = Config(tests::Protocol("NEC", {"G1010,POWER"}));
  std::erase(lfOnly, '\r');
  for (const std::string& text :
       {lfOnly, Replaced(Config(""), "ITYPE= 0\r", "ITYPE= 0"), lfOnly + Config("")}) {
    StoreOnDisk disk(text);
    EXPECT_FALSE(SetGeneralValue(disk.Store, "ITYPE", "9"));
    EXPECT_FALSE(ReplaceValueAt(disk.Store, FindNoCase("ITYPE=", text, 1), "9"));
    EXPECT_EQ(disk.Store.CfgText + disk.File(), text + text);
  }
}

TEST(ReplaceValueAt, StaysInMemoryAndInsideTheLimit) {
  StoreOnDisk disk(Config(""));
  const std::string full = Config("") + std::string(kMostCharacters - Config("").size(), '#');
  disk.Store.ReplaceText(full);
  const int position = FindNoCase("PROTOCOL=", full, 1);
  EXPECT_FALSE(ReplaceValueAt(disk.Store, 0, "3"));
  EXPECT_FALSE(ReplaceValueAt(disk.Store, 32767, "3"));
  EXPECT_TRUE(ReplaceValueAt(disk.Store, position, "7"));
  EXPECT_THROW(ReplaceValueAt(disk.Store, position, "10"), Failure);
  EXPECT_TRUE(disk.Store.CfgText == Replaced(full, "PROTOCOL= 0", "PROTOCOL= 7"));
  EXPECT_EQ(disk.File(), Config(""));
}

}  // namespace
}  // namespace keplo
