#include <gtest/gtest.h>

#include "program.h"

namespace keplo::tests {
namespace {

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
