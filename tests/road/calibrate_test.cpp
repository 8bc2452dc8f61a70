#include <gtest/gtest.h>

#include "program.h"

namespace keplo {
namespace {

using tests::Quoted;
using tests::Ran;
using tests::RunKeplo;

TEST(Calibrate, FindsTheDelayOfAMachineOrSaysWhyNot) {
  const tests::TempFolder home;
  const std::string appPath = " --app-path" + Quoted(home.Path());
  ASSERT_EQ(RunKeplo("install" + appPath).Status, 0);
  const auto sony = Quoted(std::filesystem::path(KEPLO_SOURCE_DIR) / "samples" / "sony_tv_1.mode2");
  const auto noise = Quoted(home.Write("noise.mode2", "pulse 500\nspace 40000\n"));
  const std::string before = home.Read("keplo.cfg");
  struct Case {
    std::string Words;
    int Status;
    std::string Told;
  };
  for (const Case& c : {
           Case{sony + " --dry-run", 0,
                "delay 22: base time 10\ndelay 23: base time 9\n"
                "Calibration succeeded.\nPROCDELAY= 17\n"},
           Case{sony + " --sample-time 40 --dry-run", 0, "PROCDELAY= 47\n"},
           Case{sony + " --sample-time 70", 1, "keplo: Your computer is to slow for this application!\n"},
           Case{sony + " --sample-time 20", 1, "keplo: Calibration procedure failed!\n"},
           Case{noise, 1, "No IR command received.\nkeplo: none of 1000 signals had a base time"},
       }) {
    const Ran ran = RunKeplo("calibrate" + appPath + " --replay" + c.Words);
    EXPECT_EQ(ran.Status, c.Status) << c.Words;
    EXPECT_NE((c.Status == 0 ? ran.Out : ran.Err).find(c.Told), std::string::npos) << ran.Out << ran.Err;
  }
  EXPECT_EQ(home.Read("keplo.cfg"), before);
  EXPECT_EQ(RunKeplo("calibrate" + appPath + " --replay" + sony).Status, 0);
  EXPECT_NE(home.Read("keplo.cfg").find("PROCDELAY= 17\r\n"), std::string::npos);
}

}  // namespace
}  // namespace keplo
