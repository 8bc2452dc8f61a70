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

TEST(KeploProgram, CompletesNamesInBashWhateverStandsAhead) {
  const Install install;
  const std::string bash = "PATH=" + std::filesystem::path(KEPLO_PROGRAM).parent_path().string() +
                           ":$PATH KEPLO_HOME=" + install.File("").string() +
                           " bash -c 'compopt() { :; }; . " +
                           (kSamples.parent_path() / "data/completion/keplo.bash").string() +
                           "; COMP_WORDS=(keplo \"$@\"); COMP_CWORD=$#; _keplo; echo ${COMPREPLY[*]}' bash ";
  for (const auto& [words, offered] : {std::pair("events add 'NEC&TV_M'", "NEC&TV_MUTE"),
                                       {"events modify 1 --command 'SONY&TV_1'", "SONY&TV_1"},
                                       {"commands --json rename 'RC5&TV_S'", "RC5&TV_STANDBY"},
                                       {"forget NEC TV_P", "TV_POWER"},
                                       {"--app-path = /nowhere forget NEC TV_P", ""},
                                       {"send --count 2 NEC TV_P", "TV_POWER"}}) {
    EXPECT_EQ(RunShell(bash + words).Out, std::string(offered) + "\n") << words;
  }
  const std::string notOffered =
      R"(for c in install decode explain monitor 'events list' 'events add' 'events modify' commands record learn import \
      export convert protocols 'protocol edit' send calibrate ports zone 'broker set' 'broker show' synth; do
      offered=" $()" +
      bash + R"($c --) "; for o in $(')" KEPLO_PROGRAM R"(' $c --help |
      sed -nE 's/^ +(-h,)?(--[a-z0-9-]+).*/\2/p'); do case $offered in *" $o "*) ;; *) echo $c $o; esac; done; done)";
  EXPECT_EQ(RunShell(notOffered).Out, "");
}

TEST(KeploProgram, ReadsStandardInputInBothForms) {
  const std::string synth = "'" KEPLO_PROGRAM "' synth --protocol SONY --code 101010010000";
  const Ran mode2 = RunShell(synth + " | '" KEPLO_PROGRAM "' decode --json -");
  const Ran oneLine = RunShell(synth + " --one-line | '" KEPLO_PROGRAM "' decode --json -");
  EXPECT_EQ(json::parse(mode2.Out).at("code"), "101010010000");
  EXPECT_EQ(oneLine.Out, mode2.Out);
  const Ran unknown =
      RunShell("echo '+300 -300 +400 -2000 +500 -3000 +700 -900 +1200 -1500' | '" KEPLO_PROGRAM "' record -");
  ExpectPart(unknown.Out, "UNK, base time 5 samples (275 us), no code: ");
}

TEST(KeploProgram, ReadsWithTheAnalysisThatIsAskedFor) {
  const Install install;
  const std::string press = install.Press("sony15.mode2", "--protocol SONY --code 101010010000110");
  const auto readBy = [&](const std::string& options) {
    std::string told;
    for (const std::string command : {"decode", "record"}) {
      const json row = json::parse(RunKeplo(command + " --json" + options + press).Out);
      told += row.at("analysis").get<std::string>() + (row.at("code").is_null() ? " no code " : " code ");
    }
    return told;
  };
  // The monitor of the first analysis takes SONY of 12 digits alone.
  const std::string second = "second code second code ", first = "first no code first code ";
  EXPECT_EQ(readBy(""), second);
  EXPECT_EQ(readBy(" --analysis first"), first);
  EXPECT_EQ(readBy(install.Option()), second) << "as a first install says";
  ASSERT_EQ(install.Run("settings ANALYSIS 0").Status, 0);
  EXPECT_EQ(readBy(install.Option()), first);
  EXPECT_EQ(readBy(install.Option() + " --analysis second"), second);
  EXPECT_EQ(install.Run("decode --analysis third" + press).Status, 2);
}

TEST(KeploProgram, ExplainsWhatWasHeardAndWhatToDo) {
  const Install install;
  for (const auto& [pulses, part] :
       {std::pair("+300000", "rests at the other level"),
        {"+9000 -4500 +9000", "no-timing (no mark is between 220 us and 5005 us long)"},
        {"+300 -300 +400 -2000 +500", "to do: Move closer"},
        {"+300 -300 +400 -2000 +500", "no line code fits the longest piece: its marks have 1 length"},
        {"+300 -300 +400 -2000 +500", "  spaces: 1 of 330 us, 1 of 2035 us\n"}}) {
    const Ran ran = RunShell("echo '" + std::string(pulses) + "' | '" KEPLO_PROGRAM "' explain -");
    EXPECT_EQ(ran.Status, 1);
    ExpectPart(ran.Out, part);
  }
  const Ran known = install.Run("explain " + Quoted(kSamples / "nec_tv_mute.mode2"));
  ExpectPart(known.Out, "which is NEC&TV_MUTE\n  heard: 223 ms");
  EXPECT_EQ(known.Status, 0);
  const Ran monitor = install.Run("monitor --once --replay" + Quoted(kSamples / "sony_tv_1.mode2"));
  ExpectPart(monitor.Out, "1 presses without an event\n  code: 1\n");
}

TEST(KeploProgram, JudgesASingleFrameAsItWasRecorded) {
  const Install install;
  const std::string digits = "101100111000110010110011";
  ExpectTold(install, {{"decode" + install.Press("single.mode2", "--repeats 0 --code " + digits),
                        1,
                        {"no code: doubtful", "digits are " + digits}}});
}

TEST(KeploProgram, TellsWhatIsWrongAndWhatToDo) {
  const Install install;
  const auto damaged = Quoted(install.Write("damaged.mode2", "pulse 9000\nspace 4500\npulse \033[31mmany\n"));
  const auto off = Quoted(install.File("off.mode2"));
  ExpectTold(install,
             {{"events add 'NEC&TV_POWER' --disabled", 0, {}},
              {"send NEC TV_POWER --out" + off, 0, {}},
              {"monitor --once --replay" + off, 1, {"no activated event is bound to NEC&TV_POWER"}},
              {"monitor --once --sample-time 30 --replay" + Quoted(kSamples / "rc5_tv_mute.mode2"),
               1,
               {"no activated event is bound to RC5&TV_MUTE"}},
              {"decode" + Quoted(install.File("missing.mode2")), 2, {"missing.mode2", "No such file"}},
              {"decode" + damaged, 2, {"damaged.mode2, line 3: found \" [31mmany\""}},
              {"decode", 2, {"FILE"}},
              {"decode --sample-time nan" + damaged, 2, {"--sample-time"}},
              {"sing", 2, {"sing", "--help"}},
              {"events modify --help", 0, {"keplo events modify", "--zone"}}});
  const TempFolder empty;
  const std::string elsewhere = "--app-path" + Quoted(empty.Path());
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"'" KEPLO_PROGRAM "' monitor --once " + elsewhere, "keplo.cfg: No such file or directory. Bring"},
      {"'" KEPLO_PROGRAM "' " + elsewhere + " events list", "keplo install"},
      {"KEPLO_HOME=\"/no/it's\" '" KEPLO_PROGRAM "' commands", "keplo install --app-path '/no/it'\\''s'"},
      {"'" KEPLO_PROGRAM "' help sing", "sing"},
      {"env -u HOME -u KEPLO_HOME XDG_DATA_HOME=data '" KEPLO_PROGRAM "' install", "There is no HOME"}};
  for (const auto& [command, told] : cases) {
    const Ran ran = RunShell(command);
    EXPECT_EQ(ran.Status, 2) << command;
    ExpectPart(ran.Err, told);
  }
}

TEST(KeploProgram, TellsWhatCouldNotBeWritten) {
  const Install install;
  const std::string full = install.FillConfig(0);
  const std::string press = install.Press("new.mode2", "--protocol RC5 --code 11000001001001");
  ExpectTold(install, {{"learn" + press + " --name 'RC5&NINE'", 3, {"the limit is 32767"}}});
  EXPECT_EQ(install.Config(), full);
  for (const std::string command : {"commands", "settings"}) {
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

TEST(KeploProgram, TellsWhatADamagedConfigurationLacks) {
  const Install install;
  const std::string whole = install.Config();
  const std::vector<std::tuple<std::string, int, std::string>> cases = {
      {"[General]", 1, "[General] was not found"},
      {"ITYPE=", 0, "ITYPE= was not found behind line 4"},
      {"[END]", 0, "[END] was not found"},
      {"\r", 0, "line 1 does not end"}};
  for (const auto& [lost, status, told] : cases) {
    install.Write("keplo.cfg", std::string(whole).erase(whole.find(lost), lost.size()));
    ExpectTold(install, {{"commands", status, {"keplo.cfg: " + told}}});
  }
}

TEST(KeploProgram, StopsOnSignals) {
  const Install install;
  ASSERT_EQ(install.Run("events add --each").Status, 0);
  const auto pid = Quoted(install.File("pid")), pipe = Quoted(install.File("pipe"));
  ASSERT_EQ(RunShell("mkfifo" + pipe).Status, 0);
  install.Write("ports.conf", "30 = replay:" + (kSamples / "sony_tv_1.mode2").string() + "\n");
  for (const std::string signal : {"INT", "TERM"}) {
    // What is told of the recording tells that the program waits for signals.
    const auto untilItTells = [&](const std::string& words) {
      return RunShell("sh -c 'echo $$ >\"$0\"; exec \"$@\"'" + pid + " '" KEPLO_PROGRAM "' " + words +
                      install.Option() + " | while read -r line; do echo \"$line\"; kill -s " + signal +
                      " $(cat" + pid + "); done");
    };
    ExpectPart(untilItTells("monitor --replay" + Quoted(kSamples / "sony_tv_1.mode2")).Out,
               "\n1 presses heard");
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
