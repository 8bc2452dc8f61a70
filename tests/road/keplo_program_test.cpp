#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "program.h"

namespace keplo {
namespace {

using nlohmann::json;
using tests::CapturesFolder;
using tests::Lines;
using tests::Quoted;
using tests::Ran;
using tests::RunKeplo;
using tests::TempFolder;

const std::filesystem::path kSamples = std::filesystem::path(KEPLO_SOURCE_DIR) / "samples";

json ReadIndex(const std::filesystem::path& folder) {
  std::ifstream file(folder / "index.json");
  return json::parse(file);
}

/// The code as the monitor gives it: the toggle digit of RC5 is 0.
std::string CodeOf(const json& entry) {
  std::string bits = entry.at("bits");
  if (entry.at("protocol") == "rc5") bits[2] = '0';
  return bits;
}

std::string AppPath(const TempFolder& folder) { return " --app-path" + Quoted(folder.Path()); }

TEST(KeploProgram, RaisesAnEventForEverySample) {
  const TempFolder home;
  ASSERT_EQ(RunKeplo("install" + AppPath(home)).Status, 0);
  ASSERT_EQ(RunKeplo("events add --each" + AppPath(home)).Out, "15 events added\n");

  std::string files;
  for (const json& entry : ReadIndex(kSamples))
    files += Quoted(kSamples / entry.at("file").get<std::string>());
  const Ran ran = RunKeplo("monitor --once --json" + AppPath(home) + " --replay" + files);
  EXPECT_EQ(ran.Status, 0) << ran.Err;

  const std::vector<std::string> lines = Lines(ran.Out);
  const json index = ReadIndex(kSamples);
  ASSERT_EQ(lines.size(), index.size()) << ran.Err;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const json event = json::parse(lines[i]);
    const Ran lookup = RunKeplo("lookup " + CodeOf(index[i]) + AppPath(home));
    EXPECT_EQ(event.at("command").get<std::string>() + "\n", lookup.Out) << index[i];
    EXPECT_EQ(event.size(), 5U) << event;
    EXPECT_EQ(event.at("zone"), 0);
  }
}

TEST(KeploProgram, ReadsRealRecordingsOrSaysWhyNot) {
  const std::filesystem::path captures = CapturesFolder();
  if (!std::filesystem::exists(captures / "index.json")) {
    GTEST_SKIP() << "no real recordings at " << captures << "; KEPLO_CAPTURES names their folder";
  }
  for (const std::string sampleTime : {"50", "55", "60"}) {
    int right = 0;
    for (const json& entry : ReadIndex(captures)) {
      const Ran ran = RunKeplo("decode --json --sample-time " + sampleTime +
                               Quoted(captures / entry.at("file").get<std::string>()));
      const json row = json::parse(ran.Out);
      EXPECT_EQ(row.at("press"), 1);
      if (row.at("stage") == "code") {
        ++right;
        EXPECT_EQ(row.at("code"), CodeOf(entry)) << entry;
        EXPECT_EQ(ran.Status, 0);
      } else {
        EXPECT_EQ(row.at("stage"), "no-timing") << entry;
        EXPECT_TRUE(row.at("code").is_null() && row.at("protocol").is_null() && row.at("base_t").is_null())
            << row;
        EXPECT_EQ(ran.Status, 1);
      }
    }
    EXPECT_GE(right, 9) << sampleTime << " us";
  }
}

TEST(KeploProgram, RaisesTheEventsOfRealRecordingsAndNamesTheRefused) {
  const std::filesystem::path captures = CapturesFolder();
  if (!std::filesystem::exists(captures / "index.json")) {
    GTEST_SKIP() << "no real recordings at " << captures << "; KEPLO_CAPTURES names their folder";
  }
  const TempFolder home;
  ASSERT_EQ(RunKeplo("install" + AppPath(home) + " --teach" + Quoted(captures / "index.json")).Status, 0);
  ASSERT_EQ(RunKeplo("events add --each" + AppPath(home)).Status, 0);
  std::size_t raised = 0;
  const json index = ReadIndex(captures);
  for (const json& entry : index) {
    const std::filesystem::path file = captures / entry.at("file").get<std::string>();
    const Ran ran = RunKeplo("monitor --once --json" + AppPath(home) + " --replay" + Quoted(file));
    const std::vector<std::string> events = Lines(ran.Out);
    EXPECT_LE(events.size(), 1U) << ran.Out;
    if (events.empty()) {
      EXPECT_NE(ran.Err.find(file.string() + " press 1: heard, but no event: no-timing"), std::string::npos)
          << ran.Err;
      continue;
    }
    ++raised;
    const Ran lookup = RunKeplo("lookup " + CodeOf(entry) + AppPath(home));
    EXPECT_EQ(json::parse(events[0]).at("command").get<std::string>() + "\n", lookup.Out) << entry;
  }
  EXPECT_GE(raised, 9U);
}

TEST(KeploProgram, LearnsAnIndexAndRaisesItsEvents) {
  const TempFolder home;
  const TempFolder recordings;
  ASSERT_EQ(RunKeplo("synth --protocol RC5 --code 11100001001001 --seed 5 >" +
                     Quoted(recordings.Path() / "nine.mode2"))
                .Status,
            0);
  recordings.Write(
      "index.json",
      R"([{"file":"nine.mode2","protocol":"rc5","device":"TV","key":"9 !","bits":"11100001001001"}])");
  ASSERT_EQ(
      RunKeplo("install" + AppPath(home) + " --teach" + Quoted(recordings.Path() / "index.json")).Status, 0);
  const Ran unreadable = RunKeplo("install --teach /proc/self/mem" + AppPath(home));
  EXPECT_EQ(unreadable.Status, 2);
  EXPECT_NE(unreadable.Err.find("/proc/self/mem: Input/output error"), std::string::npos) << unreadable.Err;
  ASSERT_EQ(RunKeplo("events add 'RC5&TV-9__' --id O\\'Hara --name 'Nine <b>'" + AppPath(home)).Status, 0);
  const Ran ran = RunKeplo("monitor --once --json" + AppPath(home) + " --replay" +
                           Quoted(recordings.Path() / "nine.mode2"));
  const json event = json::parse(ran.Out);
  EXPECT_EQ(event.at("event_id"), "O'Hara");
  EXPECT_EQ(event.at("event_name"), "Nine <b>");

  EXPECT_EQ(RunKeplo("events disable O\\'Hara" + AppPath(home)).Status, 0);
  const Ran disabled =
      RunKeplo("monitor --once" + AppPath(home) + " --replay" + Quoted(recordings.Path() / "nine.mode2"));
  EXPECT_EQ(disabled.Status, 1);
  EXPECT_NE(disabled.Err.find("no activated event is bound to RC5&TV-9__"), std::string::npos)
      << disabled.Err;
  EXPECT_EQ(RunKeplo("events delete O\\'Hara" + AppPath(home)).Status, 0);
  EXPECT_EQ(RunKeplo("events list" + AppPath(home)).Out, "");
}

TEST(KeploProgram, ReadsStandardInputInBothForms) {
  const std::string synth = "'" KEPLO_PROGRAM "' synth --protocol SONY --code 101010010000";
  const Ran mode2 = tests::RunShell(synth + " | '" KEPLO_PROGRAM "' decode --json -");
  const Ran oneLine = tests::RunShell(synth + " --one-line | '" KEPLO_PROGRAM "' decode --json -");
  EXPECT_EQ(json::parse(mode2.Out).at("code"), "101010010000");
  EXPECT_EQ(oneLine.Out, mode2.Out);
}

TEST(KeploProgram, ReadsWithTheAnalysisThatIsAskedFor) {
  const TempFolder home;
  ASSERT_EQ(RunKeplo("install" + AppPath(home)).Status, 0);
  const std::string press = Quoted(home.Path() / "sony15.mode2");
  ASSERT_EQ(RunKeplo("synth --protocol SONY --code 101010010000110 >" + press).Status, 0);
  const auto readBy = [&](const std::string& options) {
    std::string told;
    for (const std::string command : {"decode", "record"}) {
      const json row = json::parse(RunKeplo(command + " --json" + options + press).Out);
      told += row.at("analysis").dump() + (row.at("code").is_null() ? " no code " : " code ");
    }
    return told;
  };
  const std::string second = "\"second\" code \"second\" code ";
  // The monitor of the first analysis takes SONY of 12 digits alone.
  const std::string first = "\"first\" no code \"first\" code ";
  EXPECT_EQ(readBy(""), second);
  EXPECT_EQ(readBy(" --analysis first"), first);
  EXPECT_EQ(readBy(AppPath(home)), second) << "as a first install says";
  ASSERT_EQ(RunKeplo("settings ANALYSIS 0" + AppPath(home)).Status, 0);
  EXPECT_EQ(readBy(AppPath(home)), first);
  EXPECT_EQ(readBy(AppPath(home) + " --analysis second"), second);

  home.Write("hum.cap", std::string(400, '\xAA'));
  const json noise = json::parse(RunKeplo("decode --json" + Quoted(home.Path() / "hum.cap")).Out);
  EXPECT_TRUE(noise.at("analysis").is_null()) << noise;
  EXPECT_NE(RunKeplo("decode" + press).Out.find("(15 bits), second look"), std::string::npos);
  EXPECT_EQ(RunKeplo("decode --analysis third" + press).Status, 2);
}

/// The copies of a held press agree with their original whatever it lost.
TEST(KeploProgram, JudgesASingleFrameAsItWasRecorded) {
  const TempFolder home;
  const std::string press = Quoted(home.Path() / "lone.mode2");
  const std::string digits = "101100111000110010110011";
  ASSERT_EQ(RunKeplo("synth --repeats 0 --code " + digits + " >" + press).Status, 0);
  const Ran ran = RunKeplo("decode" + press);
  EXPECT_NE(ran.Out.find("no code: doubtful"), std::string::npos) << ran.Out;
  EXPECT_NE(ran.Out.find("digits are " + digits), std::string::npos) << ran.Out;
}

TEST(KeploProgram, TellsWhatIsWrongAndWhatToDo) {
  const TempFolder home;
  const std::string damaged = home.Write("damaged.mode2", "pulse 9000\nspace 4500\npulse many\n").string();
  home.Write("notes.txt", "not a number\n");
  struct Case {
    std::string Words;
    int Status;
    std::vector<std::string> Told;
  };
  const std::string missing = Quoted(home.Path() / "missing.mode2");
  const std::vector<Case> cases = {
      {"decode" + missing, 2, {"missing.mode2", "No such file"}},
      {"decode '" + damaged + "'", 2, {"damaged.mode2", "3", "many"}},
      {"monitor --once" + AppPath(home), 2, {"keplo.cfg", "No such file", "keplo install"}},
      {"events list" + AppPath(home), 2, {"inputKeplo.mdb", "keplo install"}},
      {"events add" + AppPath(home), 2, {"COMMAND"}},
      {"decode", 2, {"FILE"}},
      {"sing", 2, {"sing", "--help"}},
  };
  for (const Case& c : cases) {
    const Ran ran = RunKeplo(c.Words);
    EXPECT_EQ(ran.Status, c.Status) << c.Words;
    EXPECT_EQ(ran.Out, "") << c.Words;
    for (const std::string& told : c.Told)
      EXPECT_NE(ran.Err.find(told), std::string::npos) << c.Words << ": " << ran.Err;
  }
}

TEST(KeploProgram, TellsWhatADamagedConfigurationLacks) {
  const TempFolder home;
  ASSERT_EQ(RunKeplo("install" + AppPath(home)).Status, 0);
  const std::string whole = home.Read("keplo.cfg");
  struct Case {
    std::string Lost;
    int Status;
    std::string Told;
  };
  for (const Case& c : {Case{"[General]", 1, "[General] was not found"},
                        Case{"ITYPE=", 0, "ITYPE= was not found behind line 4"},
                        Case{"[END]", 0, "[END] was not found"}, Case{"\r", 0, "line 1 does not end"}}) {
    home.Write("keplo.cfg", std::string(whole).erase(whole.find(c.Lost), c.Lost.size()));
    const Ran ran = RunKeplo("commands" + AppPath(home));
    EXPECT_EQ(ran.Status, c.Status) << c.Lost;
    EXPECT_NE(ran.Err.find("keplo.cfg: " + c.Told), std::string::npos) << ran.Err;
    EXPECT_EQ(ran.Err.find("there is no protocol"), std::string::npos) << ran.Err;
  }
}

TEST(KeploProgram, StopsOnSignals) {
  const TempFolder home;
  ASSERT_EQ(RunKeplo("install" + AppPath(home)).Status, 0);
  for (const std::string signal : {"INT", "TERM"}) {
    // The signal is blocked from the start, so it counts even if it comes ahead of the first tick.
    const Ran ran =
        tests::RunShell("timeout -s " + signal + " 1 '" KEPLO_PROGRAM "' monitor" + AppPath(home));
    EXPECT_NE(ran.Out.find("0 presses heard"), std::string::npos) << ran.Err;
  }
}

}  // namespace
}  // namespace keplo
