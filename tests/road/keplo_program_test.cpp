#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "program.h"

namespace keplo::tests {
namespace {

using nlohmann::json;

const std::filesystem::path kSamples = std::filesystem::path(KEPLO_SOURCE_DIR) / "samples";

TEST(KeploProgram, RaisesAnEventForEverySample) {
  const Install install;
  ASSERT_EQ(install.Run("events add --each").Out, "15 events added\n");
  std::ifstream file(kSamples / "index.json");
  const json index = json::parse(file);
  std::string files;
  for (const json& entry : index) files += Quoted(kSamples / entry.at("file").get<std::string>());
  const std::vector<std::string> lines = Lines(install.Run("monitor --once --json --replay" + files).Out);
  ASSERT_EQ(lines.size(), index.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const json event = json::parse(lines[i]);
    const Ran lookup = install.Run("lookup " + index[i].at("bits").get<std::string>());
    EXPECT_EQ(event.at("command").get<std::string>() + "\n", lookup.Out) << index[i];
    EXPECT_EQ(event.size(), 5U) << event;
    EXPECT_EQ(event.at("zone"), 0);
  }
}

TEST(KeploProgram, OffersEveryOptionInBash) {
  const Install install;
  const std::string bash = "PATH=" + std::filesystem::path(KEPLO_PROGRAM).parent_path().string() +
                           ":$PATH KEPLO_HOME=" + install.File("").string() +
                           " bash -c 'compopt() { :; }; . " +
                           (kSamples.parent_path() / "data/completion/keplo.bash").string() +
                           "; COMP_WORDS=(keplo \"$@\"); COMP_CWORD=$#; _keplo; echo ${COMPREPLY[*]}' bash ";
  const std::string notOffered =
      R"(for c in install decode explain monitor 'events list' 'events add' 'events modify' commands record learn import \
      export convert protocols 'protocol edit' send calibrate ports zone 'broker set' 'broker show' synth; do
      offered=" $()" +
      bash + R"($c --) "; for o in $(')" KEPLO_PROGRAM R"(' $c --help |
      sed -nE 's/^ +(-h,)?(--[a-z0-9-]+).*/\2/p'); do case $offered in *" $o "*) ;; *) echo $c $o; esac; done; done)";
  EXPECT_EQ(RunShell(notOffered).Out, "");
}

TEST(KeploProgram, ReportsWhatCouldNotBeWritten) {
  const Install install;
  const std::string full = install.FillConfig(0);
  const std::string press = install.Press("new.mode2", "--protocol RC5 --code 11000001001001");
  ExpectTold(install, {{"learn" + press + " --name 'RC5&NINE'", 3, {"the limit is 32767"}}});
  EXPECT_EQ(install.Config(), full);
  for (const std::string command : {"commands", "settings", "send NEC TV_POWER --out -"}) {
    const Ran ran = RunShell("'" KEPLO_PROGRAM "' " + command + install.Option() + " >/dev/full");
    EXPECT_EQ(ran.Status, 3);
    ExpectPart(ran.Err, "cannot be written");
  }
  const Ran limited = RunShell("ulimit -f 1; '" KEPLO_PROGRAM "' settings COMPORT 3" + install.Option());
  EXPECT_EQ(limited.Status, 3) << limited.Err;
  ExpectPart(
      RunShell("ulimit -f 4; '" KEPLO_PROGRAM "' install --app-path '" + install.File("new").string() + "'")
          .Err,
      "new/inkeplo.ico cannot be written: File too large. Check the folder");
  EXPECT_EQ(install.Config(), full);
}

TEST(KeploProgram, StopsOnSignals) {
  const Install install;
  ASSERT_EQ(install.Run("events add --each").Status, 0);
  const auto pid = Quoted(install.File("pid")), pipe = Quoted(install.File("pipe"));
  ASSERT_EQ(RunShell("mkfifo" + pipe).Status, 0);
  install.Write("ports.conf", "30 = replay:" + (kSamples / "sony_tv_1.mode2").string() + "\n");
  for (const std::string signal : {"INT", "TERM"}) {
    // The output about the recording shows that the program waits for signals.
    const auto untilItTells = [&](const std::string& words) {
      return RunShell("sh -c 'echo $$ >\"$0\"; exec \"$@\"'" + pid + " '" KEPLO_PROGRAM "' " + words +
                      install.Option() + " | while read -r line; do echo \"$line\"; kill -s " + signal +
                      " $(cat" + pid + "); done");
    };
    ExpectPart(untilItTells("monitor --replay" + Quoted(kSamples / "sony_tv_1.mode2")).Out,
               "\n1 press heard");
    ExpectPart(untilItTells("ports --watch 30").Out, " 660 us; edges missed 0\n");
    const Ran decode = RunShell("timeout -k 60 -s " + signal + " 1 '" KEPLO_PROGRAM "' decode" + pipe);
    EXPECT_EQ(decode.Status, 124) << "a pipe that nobody writes to";
  }
}

/// The examples of all commands, in an order in which each finds what it needs.
TEST(KeploProgram, GivesExamplesThatWork) {
  const Install install;
  std::filesystem::create_symlink(kSamples, install.File("samples"));
  const std::string nec = "--protocol NEC --code 00000001111111101101100000100111 --seed ";
  install.Press("first.mode2", nec + "1");
  install.Press("second.mode2", nec + "2");
  const std::set<std::string> needALine = {"keplo monitor",
                                           "keplo calibrate",
                                           "keplo zone",
                                           "keplo zone 3",
                                           "keplo record --live --count 2",
                                           "keplo ports --watch 1",
                                           "keplo send 'NEC&TV_POWER'"};
  for (const std::string command :
       {"synth",         "install",         "decode",          "record",        "learn",      "lookup",
        "send",          "calibrate",       "settings",        "ports",         "zone",       "protocols",
        "protocol add",  "protocol edit",   "protocol delete", "protocol",      "events add", "events modify",
        "events enable", "events disable",  "events list",     "events delete", "events",     "monitor",
        "commands",      "commands rename", "forget"}) {
    const std::vector<std::string> lines = Lines(RunKeplo("help " + command).Out);
    auto line = std::find(lines.begin(), lines.end(), "Examples:");
    EXPECT_LT(lines.end() - line, 4) << command;
    ASSERT_NE(line, lines.end()) << command;
    while (++line != lines.end()) {
      const std::string example = line->substr(2);
      if (example.empty() || needALine.count(example) > 0) continue;
      const Ran ran =
          RunShell("{ cd" + Quoted(install.File("")) +
                   "; export KEPLO_HOME=.; keplo() { '" KEPLO_PROGRAM "' \"$@\"; }; " + example + "; }");
      EXPECT_EQ(ran.Status, 0) << example << "\n" << ran.Out << ran.Err;
    }
  }
}

}  // namespace
}  // namespace keplo::tests
