#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program.h"

namespace keplo::tests {
namespace {

using nlohmann::json;

TEST(Protocols, AreAddedUsedChangedAndDeleted) {
  const Install install;
  const std::string before = install.Config();
  ExpectTold(install, {{"protocols", 0, {"SONY\tSONY\t5\tPulse width\nRC5"}},
                       {"protocols Lamp", 1, {"no protocol \"Lamp\""}},
                       {"protocol add Lamp --gproto sony --description 'By the window' --repeat 030",
                        0,
                        {"Lamp added\n# By the window\nGPROTO= 1\nSENDPLS= 550\nREPEAT= 30\nBITG= 1111\n"
                         "BIT0= 01\nBIT1= 011\nGREPEAT= 30\n"}},
                       {"protocols lamp", 0, {"gproto\tSONY\nsendpls\t550\nrepeat\t30\n"}}});
  json row = json::parse(install.Run("protocols Lamp --json").Out);
  EXPECT_EQ(row.at("grepeat"), 30) << "the sync repeats with the frame";
  ExpectTold(install, {{"learn --protocol lamp --name ON" +
                            install.Press("p.mode2", "--protocol SONY --code 011010010000"),
                        0,
                        {"Lamp&ON learned"}},
                       {"send Lamp ON --out -", 0, {"pulse "}},
                       {"protocol edit LAMP --bitg 11111 --grepeat -5 --description=",
                        0,
                        {"Lamp changed\n", "\nBITG= 11111\n"}}});
  row.update({{"bitg", "11111"}, {"grepeat", -5}, {"description", ""}, {"commands", 1}});
  EXPECT_EQ(json::parse(install.Run("protocols Lamp --json").Out), row);
  ExpectTold(install, {{"protocol delete Lamp", 1, {"no terminal to ask on"}},
                       {"protocol delete Lamp --yes", 0, {"Lamp deleted\n"}}});
  EXPECT_EQ(install.Config(), before);
}

TEST(Protocols, AreRefusedWithTheReason) {
  const Install install;
  const std::string before = install.Config();
  ExpectTold(install, {{"protocol add nec --gproto NEC", 1, {"The new protocol name is in use"}},
                       {"protocol add Lamp --gproto NEC --sendpls x", 2, {"--sendpls"}},
                       {"protocol add Lamp --gproto NEC --repeat 40000", 2, {"--repeat"}},
                       {"protocol add Lamp --gproto JVC", 2, {"--gproto"}},
                       {"protocol edit SONY", 2, {"--repeat"}},
                       {"protocol edit Template --repeat 0", 1, {"The Template protocol cannot be edited"}},
                       {"protocol delete Recorded --yes", 1, {"Recorded is a virtual protocol"}},
                       {"protocol delete Lamp --yes", 1, {"Lamp"}}});
  EXPECT_EQ(install.Config(), before);
}

TEST(Protocols, AreDeletedOnceATerminalSaidYes) {
  const Install install;
  const std::string before = install.Config();
  const std::string command = "'" KEPLO_PROGRAM "' protocol delete SONY" + install.Option();
  for (const std::string answer : {"n", "y"}) {
    const Ran ran = RunShell("echo " + answer + " | script -qec \"" + command + "\" /dev/null");
    if (ran.Status == 127) GTEST_SKIP() << "there is no script to make a terminal with";
    ExpectPart(ran.Out, "Do you want to delete the protocol SONY from the current configuration file?");
    EXPECT_EQ(install.Config() != before, answer == "y");
  }
}

}  // namespace
}  // namespace keplo::tests
