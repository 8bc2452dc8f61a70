#include <gtest/gtest.h>

#include <fstream>

#include "program.h"

namespace keplo {
namespace {

using tests::Install;
using tests::Ran;
using tests::RunKeplo;

TEST(Settings, AreShownAndChangedInTheFile) {
  const Install install;
  const std::string before = install.Config();
  EXPECT_EQ(RunKeplo("settings PROCDELAY" + install.Option()).Out, "10\n");
  struct Case {
    std::string Words;
    int Status;
    std::string Told;
  };
  const std::vector<Case> cases = {
      {"settings COMPORT 31", 1, "COMPORT cannot be 31: it takes a serial port, 1 to 30."},
      {"settings PROTOCOL 4", 1, "PROTOCOL cannot be 4"},
      {"settings ITYPE 2", 1, "ITYPE cannot be 2"},
      {"settings BEEPON 1x", 1, "BEEPON cannot be 1x"},
      {"settings ANALYSIS 2", 1, "ANALYSIS cannot be 2"},
      {"settings NOTHING", 1, "There is no setting NOTHING"},
  };
  for (const Case& c : cases) {
    const Ran ran = RunKeplo(c.Words + install.Option());
    EXPECT_EQ(ran.Status, c.Status) << c.Words;
    EXPECT_NE(ran.Err.find(c.Told), std::string::npos) << ran.Err;
  }
  EXPECT_EQ(install.Config(), before);

  const auto changed = [&](const std::string& words) {
    return RunKeplo("settings " + words + install.Option()).Out;
  };
  EXPECT_EQ(changed("comport 12"), "COMPORT 12\n");
  EXPECT_EQ(changed("ITYPE 9"), "ITYPE 9\n");
  EXPECT_EQ(changed("VEXIL 3"), "VEXIL 3\nITYPE 8\n") << "zone hardware and software carrier share TxD";
  EXPECT_EQ(changed("ITYPE 9"), "");
  EXPECT_EQ(changed("ANALYSIS 0"), "ANALYSIS 0\n");
  std::string expected = before.substr(before.find("[NEC]"));
  expected.insert(0,
                  "[General]\r\nCOMPORT= 12\r\nPROTOCOL= 0\r\nPROCDELAY= 10\r\nITYPE= 8\r\nBEEPON= 1\r\n"
                  "VEXIL= 3\r\nANALYSIS= 0\r\n\r\n");
  EXPECT_EQ(install.Config(), expected);
  std::string commented = expected;
  commented.insert(commented.find("COMPORT="), "# ANALYSIS= 1 is the second look\r\n");
  std::ofstream(install.File("keplo.cfg"), std::ios::binary) << commented;
  EXPECT_EQ(changed("ANALYSIS 1"), "ANALYSIS 1\n");
  EXPECT_EQ(install.Config(), commented.replace(commented.find("\nANALYSIS= 0") + 11, 1, "1"));
  std::ofstream(install.File("keplo.cfg"), std::ios::binary) << expected;
  EXPECT_EQ(RunKeplo("settings" + install.Option()).Out,
            "COMPORT 12\nPROTOCOL 0\nPROCDELAY 10\nITYPE 8\nBEEPON 1\nVEXIL 3\nANALYSIS 0\n");
}

}  // namespace
}  // namespace keplo
