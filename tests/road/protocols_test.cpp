#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program.h"

namespace keplo {
namespace {

using nlohmann::json;
using tests::Quoted;
using tests::Ran;
using tests::RunKeplo;
using tests::RunShell;
using tests::TempFolder;

class Protocols : public ::testing::Test {
 protected:
  Protocols() { Run("install"); }

  Ran Run(const std::string& words) const {
    return RunKeplo(words + " --app-path" + Quoted(folder_.Path()) + " </dev/null");
  }
  std::string Config() const { return folder_.Read("keplo.cfg"); }

  TempFolder folder_;
};

TEST_F(Protocols, AreAddedUsedChangedAndDeleted) {
  const std::string before = Config();
  EXPECT_NE(Run("protocols").Out.find("SONY\tSONY\t5\tPulse width\nRC5"), std::string::npos);
  EXPECT_EQ(Run("protocols Lamp").Status, 1);
  EXPECT_EQ(Run("protocol add Lamp --gproto sony --description 'By the window' --repeat 30").Out,
            "Lamp added\n# By the window\nGPROTO= 1\nSENDPLS= 550\nREPEAT= 30\nBITG= 1111\nBIT0= 01\n"
            "BIT1= 011\nGREPEAT= 30\n");
  EXPECT_NE(Run("protocols Lamp").Out.find("gproto\tSONY\nsendpls\t550\nrepeat\t30\n"), std::string::npos);
  json row = json::parse(Run("protocols Lamp --json").Out);
  EXPECT_EQ(row.at("grepeat"), 30) << "the sync repeats with the frame";
  EXPECT_EQ(row.at("bit1"), "011");
  const std::string press = Quoted(folder_.Path() / "press.mode2");
  RunShell("'" KEPLO_PROGRAM "' synth --protocol SONY --code 011010010000 >" + press);
  EXPECT_EQ(Run("learn" + press + " --protocol Lamp --name ON").Status, 0);
  EXPECT_EQ(Run("send Lamp ON --out -").Status, 0);

  const std::string edited = Run("protocol edit Lamp --bitg 11111 --grepeat -5").Out;
  EXPECT_EQ(edited.substr(0, edited.find('\n')), "Lamp changed");
  EXPECT_NE(edited.find("\nBITG= 11111\n"), std::string::npos) << edited;
  row.update({{"bitg", "11111"}, {"grepeat", -5}, {"commands", 1}});
  EXPECT_EQ(json::parse(Run("protocols Lamp --json").Out), row);

  EXPECT_EQ(Run("protocol delete Lamp").Status, 1) << "there is no terminal to ask on";
  EXPECT_EQ(json::parse(Run("protocols Lamp --json").Out), row);
  EXPECT_EQ(Run("protocol delete Lamp --yes").Out, "Lamp deleted\n");
  EXPECT_EQ(Config(), before);
}

TEST_F(Protocols, AreRefusedWithTheSentencesOfTheWindow) {
  const std::string before = Config();
  struct Case {
    std::string Words;
    int Status;
    std::string Told;
  };
  const std::vector<Case> cases = {
      {"add nec --gproto NEC", 1, "The new protocol name is in use"},
      {"add Lamp --gproto RC5", 1, "BITx must not be empty, if no BITG, then BITG=0"},
      {"add Lamp --gproto NEC --sendpls x", 2, "--sendpls"},
      {"add Lamp --gproto NEC --repeat 40000", 2, "--repeat"},
      {"add Lamp --gproto JVC", 2, "--gproto"},
      {"edit SONY", 2, "--repeat"},
      {"edit Template --repeat 0", 1, "The Template protocol cannot be edited"},
      {"delete template --yes", 1, "The Template protocol cannot be deleted"},
      {"delete Recorded --yes", 1, "Recorded is a virtual protocol used to test new commands before save."},
      {"delete Lamp --yes", 1, "Lamp"},
  };
  for (const Case& c : cases) {
    const Ran ran = Run("protocol " + c.Words);
    EXPECT_EQ(ran.Status, c.Status) << c.Words << ran.Out;
    EXPECT_NE((ran.Err + ran.Out).find(c.Told), std::string::npos) << c.Words << ": " << ran.Err;
  }
  EXPECT_EQ(Config(), before);
}

TEST_F(Protocols, AreAskedAboutOnATerminalAheadOfADelete) {
  const std::string before = Config();
  const std::string command =
      "'" KEPLO_PROGRAM "' protocol delete SONY --app-path '" + folder_.Path().string() + "'";
  for (const bool yes : {false, true}) {
    const std::string answer = yes ? "y" : "n";
    const Ran ran = RunShell("echo " + answer + " | script -qec \"" + command + "\" /dev/null");
    if (ran.Status == 127) GTEST_SKIP() << "there is no script to make a terminal with";
    EXPECT_NE(ran.Out.find("Do you want to delete the protocol SONY from the current configuration file?"),
              std::string::npos)
        << ran.Out;
    EXPECT_EQ(Config() != before, yes);
  }
}

}  // namespace
}  // namespace keplo
