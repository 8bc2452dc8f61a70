#include <gtest/gtest.h>

#include "program.h"

namespace keplo::tests {
namespace {

TEST(Settings, AreShownAndChangedInTheFile) {
  const Install install;
  const std::string before = install.Config();
  ExpectTold(install, {{"settings PROCDELAY", 0, {"10\n"}},
                       {"settings ANALYSIS --json", 0, {"{\"key\":\"ANALYSIS\",\"value\":1}\n"}},
                       {"settings COMPORT 31", 1, {"COMPORT cannot be 31: it takes a serial port, 1 to 30."}},
                       {"settings PROTOCOL 4", 1, {"PROTOCOL cannot be 4"}},
                       {"settings ITYPE 2", 1, {"ITYPE cannot be 2"}},
                       {"settings BEEPON 1x", 1, {"BEEPON cannot be 1x"}},
                       {"settings NOTHING", 1, {"There is no setting NOTHING"}}});
  EXPECT_EQ(install.Config(), before);

  const std::string line = "ANALYSIS= 1\r\n";  // which files of older versions lack
  install.Write("keplo.cfg", std::string(before).erase(before.find(line), line.size()));
  ExpectTold(install, {{"settings comport 012", 0, {"COMPORT 12\n"}},
                       {"settings ITYPE 9", 0, {"ITYPE 9\n"}},
                       {"settings VEXIL 3", 0, {"VEXIL 3\nITYPE 8\n"}},  // both need TxD
                       {"settings ITYPE 9", 1, {"keplo settings VEXIL 0 --app-path '"}},
                       {"settings ANALYSIS 0", 0, {"ANALYSIS 0\n"}}});
  EXPECT_EQ(install.Config(),
            "[General]\r\nCOMPORT= 12\r\nPROTOCOL= 0\r\nPROCDELAY= 10\r\nITYPE= 8\r\nBEEPON= 1\r\n"
            "VEXIL= 3\r\nANALYSIS= 0\r\n\r\n" +
                before.substr(before.find("[NEC]")));
  EXPECT_EQ(install.Run("settings").Out,
            "COMPORT 12\nPROTOCOL 0\nPROCDELAY 10\nITYPE 8\nBEEPON 1\nVEXIL 3\nANALYSIS 0\n");
}

TEST(Settings, AreCalibratedWithAHeldKey) {
  const Install install;
  const auto sony = Quoted(std::filesystem::path(KEPLO_SOURCE_DIR) / "samples" / "sony_tv_1.mode2");
  const auto noise = Quoted(install.Write("noise.mode2", "pulse 500\nspace 40000\n"));
  const std::string before = install.Config(), calibrate = "calibrate --replay";
  ExpectTold(
      install,
      {{calibrate + sony + " --dry-run",
        0,
        {"delay 22: base time 10\ndelay 23: base time 9\nCalibration succeeded.\nPROCDELAY= 17\n"}},
       {calibrate + sony + " --sample-time 40 --dry-run", 0, {"PROCDELAY= 47\n"}},
       {calibrate + sony + " --sample-time 70",
        1,
        {"keplo: Your computer is to slow for this application!\n"}},
       {calibrate + sony + " --sample-time 20", 1, {"keplo: Calibration procedure failed!\n"}},
       {calibrate + noise, 1, {"No IR command received.\nkeplo: none of 1000 signals had a base time"}}});
  EXPECT_EQ(install.Config(), before);
  EXPECT_EQ(install.Run(calibrate + sony).Status, 0);
  ExpectPart(install.Config(), "PROCDELAY= 17\r\n");
}

}  // namespace
}  // namespace keplo::tests
