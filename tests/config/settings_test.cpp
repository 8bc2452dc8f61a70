#include <gtest/gtest.h>

#include "config/change_value.h"
#include "config/check_config.h"
#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/parse_number.h"
#include "config/read_settings.h"

namespace keplo::tests {
namespace {

const std::string kNec = Config(Protocol("NEC", {"G1010,POWER"}));

std::string WithoutCr(std::string text) {
  std::erase(text, '\r');
  return text;
}

TEST(Numbers, AreReadFromTheBeginningOfAValue) {
  for (const std::string row :
       {"  7ab|7|7", "+1e3|1|1", "2.7|2|3", "-2.7|-2|-3", "2.49|2|2", "2.5|2|2", "2.5000001|2|3",
        "-3.5|-3|-4", "32767.9|32767|32767", "|0|0", "COM1|0|0", ".7|0|0", "--1|0|0", "\t5|0|0", "- 5|0|0",
        "-99999999999999999999|-32768|-32768"}) {
    EXPECT_EQ(WithoutFraction<std::int16_t>(Parts(row)[0]), std::stoi(Parts(row)[1])) << row;
    EXPECT_EQ(Rounded<std::int16_t>(Parts(row)[0]), std::stoi(Parts(row)[2])) << row;
  }
  EXPECT_EQ(Rounded<std::int32_t>("99999999999"), 2147483647);
}

/// All settings in a line, a beep as b and the second look as 2, and the text that was missing.
std::string Reading(const std::string& text) {
  const Stored stored(text);
  Settings settings;
  const SettingsReading reading = ReadSettings(stored.Store, settings);
  std::string line;
  for (const int number : {settings.ComPortNr, int{settings.ProtocolIndex}, int{settings.ProcDelay},
                           settings.InterfaceType, int{settings.ReceiverKind}, int{settings.VexilMode}}) {
    line += std::to_string(number) + " ";
  }
  return line + (settings.BeepOn ? "b" : "-") + (settings.Analysis == Analysis::Second ? "2" : "1") +
         std::string(reading.Missing);
}

TEST(ReadSettings, ReadsTheKeysInOrderUpToTheFirstMissingOne) {
  EXPECT_EQ(Reading("; a head\r\n[general]\r\ncomport=12\r\nPROTOCOL= 2.9\r\n# a line\r\nPROCDELAY= 30\r\n"
                    "ITYPE= 8.5\r\nBEEPON= 0\r\nVEXIL= 2.5\r\n[End]\r\n"),
            "12 2 30 8 1 2 -1");
  const std::string set =
      "COMPORT= 3\r\nPROTOCOL= 0\r\nPROCDELAY= 10\r\nITYPE= 9\r\nBEEPON= 1\r\nVEXIL= 0\r\n";
  const std::string whole = "[General]\r\n" + set + "[END]\r\n";
  for (const std::string row :
       {"[END]|[EN]|0 0 0 0 0 0 -1[End]", "[General]|[Gen]|0 0 0 0 0 0 -1[General]",
        "COMPORT=|COMPORT|0 0 0 0 0 0 -1COMPORT=",
        "PROCDELAY= 10\r\nITYPE= 9|ITYPE= 9\r\nPROCDELAY= 10|3 0 10 0 0 0 -1ITYPE=",
        "VEXIL=|ZONES=|3 0 10 9 1 0 b1VEXIL=", "ITYPE=|ANALYSIS= 1\r\nTYPE=|3 0 10 0 0 0 -1ITYPE=",
        "BEEPON= 1|BEEPON= 2|3 0 10 9 1 0 -1", "BEEPON= 1|BEEPON= -1|3 0 10 9 1 0 -1",
        "BEEPON= 1|BEEPON= 1.6|3 0 10 9 1 0 -1", "VEXIL=|VEXIL=|3 0 10 9 1 0 b1",
        "COMPORT=|analysis=1\r\nCOMPORT=|3 0 10 9 1 0 b2", "VEXIL= 0|VEXIL= 0\r\nANALYSIS= 1|3 0 10 9 1 0 b2",
        "VEXIL= 0|VEXIL= 0\r\nANALYSIS= 0|3 0 10 9 1 0 b1",
        "VEXIL= 0|VEXIL= 0\r\nANALYSIS= 2|3 0 10 9 1 0 b1",
        "[END]|[Other]\r\nANALYSIS= 1\r\n[END]|3 0 10 9 1 0 b1"}) {
    EXPECT_EQ(Reading(Replaced(whole, Parts(row)[0], Parts(row)[1])), Parts(row)[2]) << row;
  }
}

TEST(SetGeneralValue, ChangesOneWholeLineOfTheFileOrNone) {
  const std::string text = Config(""), set = Replaced(text, "ITYPE= 0", "ITYPE= 12");
  const auto change = [](const std::string& file, const std::string& after) {
    Stored stored(file);
    EXPECT_EQ(SetGeneralValue(stored.Store, "itype", " 12 "), !after.empty());
    EXPECT_EQ(stored.File(), after.empty() ? file : after);
    EXPECT_EQ(stored.Store.CfgText, stored.File());
  };
  for (const std::string line : {"ITYPE= 0", "ITYPE= 4294967296 ", "ITYPE= ", "ITYPE=0", "ITYPE="}) {
    change(Replaced(text, "ITYPE= 0", line), set);
  }
  for (const std::string& torn :
       {Replaced(text, "ITYPE=", "TYPE="), Replaced(text, "[General]", "[Gen]"), WithoutCr(kNec),
        std::string("[General]\r\nITYPE= 10"), std::string("[General]\r\nITYPE= 10\r"),
        Replaced(text, "ITYPE= 0\r", "ITYPE= 0"), WithoutCr(kNec) + text}) {
    change(torn, "");
  }
}

}  // namespace
}  // namespace keplo::tests
