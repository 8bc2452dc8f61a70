#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "program.h"
#include "signal/signal_builder.h"

namespace keplo {
namespace {

using nlohmann::json;
using tests::CapturesFolder;
using tests::Install;
using tests::Lines;
using tests::Quoted;
using tests::Ran;
using tests::RunKeplo;

/// A press that no sample has learned.
std::string NewPress(const Install& install, const std::string& name, const std::string& synth) {
  const std::string file = install.File(name).string();
  EXPECT_EQ(RunKeplo("synth " + synth + " >'" + file + "'").Status, 0);
  return " '" + file + "'";
}

TEST(Learning, HearsEveryCommandThatItSends) {
  const Install install;
  const std::string sent = install.File("sent.mode2").string();
  int walked = 0;
  for (const std::string& line : Lines(RunKeplo("commands" + install.Option()).Out)) {
    const std::size_t first = line.find('\t'), second = line.find('\t', first + 1);
    const std::string protocol = line.substr(0, first);
    const std::string name = line.substr(first + 1, second - first - 1);
    const std::string digits = line.substr(second + 2);
    if (name == "EMPTY") continue;
    ++walked;
    ASSERT_EQ(RunKeplo("send " + protocol + " " + name + " --out '" + sent + "'" + install.Option()).Status,
              0);
    for (const std::string sampleTime : {"50", "55", "60"}) {
      const std::string options = " --json --sample-time " + sampleTime + Quoted(sent);
      EXPECT_EQ(json::parse(RunKeplo("decode" + options).Out).at("code"), digits) << line << sampleTime;
      const json row = json::parse(RunKeplo("record" + options + install.Option()).Out);
      EXPECT_EQ(row.at("code"), digits) << line << " at " << sampleTime;
      EXPECT_EQ(row.at("known_as"), protocol + "&" + name);
    }
  }
  EXPECT_GE(walked, 15);
}

TEST(Learning, SendsANewToggleDigitWithEachPress) {
  const Install install;
  const Ran sent =
      tests::RunShell("'" KEPLO_PROGRAM "' send RC5 TV_MUTE --count 3 --out -" + install.Option() +
                      " | '" KEPLO_PROGRAM "' record --json -" + install.Option());
  std::string toggles;
  for (const std::string& line : Lines(sent.Out)) {
    const json row = json::parse(line);
    EXPECT_EQ(row.at("code"), "11000000001101");
    toggles += row.at("toggle").dump();
  }
  EXPECT_EQ(toggles, "101");
}

TEST(Learning, TellsWhatTheWindowShows) {
  const Install install;
  const std::string press = NewPress(install, "sony.mode2", "--protocol SONY --code 101010010000 --jitter 0");
  const json row = json::parse(RunKeplo("record --json" + press + install.Option()).Out);
  EXPECT_EQ(row.size(), 17U) << row;
  EXPECT_EQ(row.at("press"), 1);
  EXPECT_EQ(row.at("protocol"), "SONY");
  EXPECT_EQ(row.at("pulse_us"), row.at("base_t").get<int>() * 55);
  EXPECT_EQ(row.at("bits"), 12);
  EXPECT_EQ(row.at("repeats"), true);
  EXPECT_EQ(row.at("sync_type"), 2);
  EXPECT_EQ(row.at("address"), 1);
  EXPECT_EQ(row.at("command"), 21);
  EXPECT_TRUE(row.at("toggle").is_null());
  EXPECT_EQ(row.at("known_as"), "SONY&TV_POWER");
  EXPECT_EQ(row.at("ones").size(), row.at("zeros").size() + 1);

  std::ofstream(install.File("silence.cap"), std::ios::binary) << std::string(1000, '\0');
  const Ran silence = RunKeplo("record --json" + Quoted(install.File("silence.cap")) + install.Option());
  EXPECT_EQ(silence.Status, 1);
  EXPECT_NE(silence.Err.find("there is no signal"), std::string::npos) << silence.Err;
  const json nothing = json::parse(silence.Out);
  for (const auto& [field, value] : nothing.items())
    EXPECT_EQ(value.is_null(), field != "file" && field != "press") << field;
}

TEST(Learning, StoresSendsAndForgetsACommand) {
  const Install install;
  const std::string before = install.Config();
  const std::string press = NewPress(install, "new.mode2", "--protocol RC5 --code 11100001001001");
  const Ran learned = RunKeplo("learn" + press + " --protocol RC5 --name NINE" + install.Option());
  EXPECT_EQ(learned.Out, "RC5&NINE learned: G11000001001001\n") << learned.Err;
  EXPECT_EQ(install.Config().size(), before.size() + std::string("G11000001001001,NINE\r\n").size());
  EXPECT_EQ(RunKeplo("send RC5 NINE" + install.Option()).Status, 0);
  EXPECT_EQ(RunKeplo("forget RC5 NINE" + install.Option()).Status, 0);
  EXPECT_EQ(install.Config(), before);
}

TEST(Learning, NeedsTwoPressesOfAKeyThatSendsOneFrame) {
  const Install install;
  const std::string code = "00000001111111101101100000100111";
  const std::string one = NewPress(install, "one.mode2", "--protocol NEC --code " + code);
  const std::string again = NewPress(install, "again.mode2", "--protocol NEC --seed 9 --code " + code);
  const std::string words = " --protocol NEC --name GREEN" + install.Option();
  const Ran once = RunKeplo("learn" + one + words);
  EXPECT_EQ(once.Status, 1);
  EXPECT_NE(once.Err.find("The command is not yet validated. Pres again Record button to validate"),
            std::string::npos)
      << once.Err;
  const Ran twice = RunKeplo("learn" + one + again + words);
  EXPECT_EQ(twice.Out, "NEC&GREEN learned: G" + code + "\n") << twice.Err;
}

TEST(Learning, LetsNoHeldFrameConfirmItself) {
  const Install install;
  const std::string firstFrame = " | head -n 25";  // SONY sends each three times
  struct Key {
    std::string Protocol, Press, NextPress;
  };
  for (const Key& key : {Key{"SONY", "001000100010", "001000100010"},
                         Key{"RC5", "11000001001001", "11100001001001"}}) {  // with the next toggle digit
    const std::string synth = "--repeats 0 --protocol " + key.Protocol + " --code ";
    const std::string press = NewPress(install, "press.mode2", synth + key.Press + firstFrame);
    const std::string next = NewPress(install, "next.mode2", synth + key.NextPress + firstFrame);
    const std::string words = " --name ONCE --protocol " + key.Protocol + install.Option();
    const Ran once = RunKeplo("learn" + press + words);
    EXPECT_EQ(once.Status, 1) << once.Out;
    EXPECT_NE(once.Err.find("not yet validated"), std::string::npos) << once.Err;
    EXPECT_EQ(json::parse(RunKeplo("record --json" + press).Out).at("repeats"), true) << "as held";
    EXPECT_EQ(RunKeplo("learn" + press + next + words).Status, 0) << key.Protocol;
  }
}

TEST(Learning, RefusesWithTheSentencesOfTheWindow) {
  const Install install;
  const std::string press = NewPress(install, "new.mode2", "--protocol RC5 --code 11000001001001");
  const std::string known = NewPress(install, "known.mode2", "--protocol SONY --code 101010010000");
  std::string oddRc5;  // half bits that make no pairs
  for (const char half : std::string("100110100100110110101101001")) oddRc5.append(16, half);
  std::ofstream(install.File("odd.cap"), std::ios::binary)
      << tests::Bytes(oddRc5 + std::string(1600, '0') + oddRc5);
  const std::string before = install.Config();
  struct Case {
    std::string Words;
    int Status;
    std::string Told;
  };
  const std::vector<Case> cases = {
      {"learn" + press + " --protocol Template --name NINE", 1, "This protocol is read-only."},
      {"learn" + press + " --protocol recorded --name NINE", 1, "This is a virtual read-only protocol!"},
      {"learn" + press + " --protocol RC5 --name 'NI NE'", 1, "Use only a-z, A-Z,'-','_' characters"},
      {"learn" + press + " --protocol RC5 --name MUTE", 1,
       "This command name is in use for the current protocol."},
      {"learn" + known + " --protocol SONY --name OTHER", 1, "This command exist as TV_POWER"},
      {"learn" + press + " --protocol RC5", 2, "--name"},
      {"learn" + Quoted(install.File("odd.cap")) + " --protocol RC5 --name ODD", 1,
       "no code: some half bits"},
      {"learn" + known + press + " --protocol RC5 --name TWO", 1, ": G101010010000 G11000001001001"},
      {"forget Template EMPTY", 1, "This protocol is read-only."},
      {"forget NEC NOTHING", 1, "NOTHING"},
      {"send NEC NOTHING", 1, "NOTHING"},
      {"send NOTHING TV_POWER", 1, "NOTHING"},
      {"send NEC", 2, "COMMAND"},
      {"send --code G101010", 2, "--protocol"},
      {"send NEC TV_POWER --pulse 0", 2, "--pulse"},
      {"send --code G10a010 --protocol NEC", 1, "Please use only 1's and 0's for the code"},
      {"send --code G1010 --protocol NEC", 1, "too short"},
      {"send --code G101010 --protocol Recorded", 1, "Information about received command is not complete!"},
  };
  for (const Case& c : cases) {
    const Ran ran = RunKeplo(c.Words + install.Option());
    EXPECT_EQ(ran.Status, c.Status) << c.Words << ran.Out;
    EXPECT_NE((ran.Err + ran.Out).find(c.Told), std::string::npos) << c.Words << ": " << ran.Err;
  }
  EXPECT_EQ(install.Config(), before);
}

TEST(Learning, RefusesWhatAFullFileCannotTake) {
  const Install install;
  const std::string full = install.FillConfig(0);
  const std::string press = NewPress(install, "new.mode2", "--protocol RC5 --code 11000001001001");
  const Ran ran = RunKeplo("learn" + press + " --protocol RC5 --name NINE" + install.Option());
  EXPECT_EQ(ran.Status, 3) << ran.Out;
  EXPECT_FALSE(ran.Err.empty());
  EXPECT_EQ(install.Config(), full);
}

TEST(Learning, TellsWhichCodesOfAnIndexWereLeftOutAndWhy) {
  const Install install;
  install.FillConfig(30);  // bytes for one more command, and not for two
  std::ofstream(install.File("index.json")) << R"([
    {"protocol":"nec","key":"TWO","bits":"10102"}, {"protocol":"rc5","key":"BLANK","bits":"11 0000000101"},
    {"protocol":"rc5","key":"SEVEN","bits":"11100001001001"},
    {"protocol":"rc5","key":"EIGHT","bits":"11100001001010"},
    {"protocol":"rc5","key":"NINE","bits":"11100001001011"}])";
  const Ran ran = RunKeplo("install --teach" + Quoted(install.File("index.json")) + install.Option());
  EXPECT_EQ(ran.Status, 3);
  EXPECT_NE(ran.Out.find("\n1 commands learned from"), std::string::npos) << ran.Out;
  for (const char* told :
       {"index.json, entry 1: NEC&TWO was not learned:", "and not 10102",
        "index.json, entry 2: RC5&BLANK was not learned:", "index.json, entry 4; 2 codes not learned: "}) {
    EXPECT_NE(ran.Err.find(told), std::string::npos) << told << ": " << ran.Err;
  }
  EXPECT_EQ(RunKeplo("send RC5 SEVEN" + install.Option()).Status, 0);
  EXPECT_EQ(install.Config().find("10102"), std::string::npos);
}

TEST(Learning, ExplainsPressesWithoutAnInstallAndTellsWhatIsWrongWithANamedOne) {
  const Install install;
  const std::string words = "' '" KEPLO_PROGRAM "' record" +
                            NewPress(install, "press.mode2", "--protocol RC5 --code 11000001001001");
  std::filesystem::create_directories(install.File("data/keplo/keplo.cfg"));
  const std::vector<std::pair<std::string, std::string>> homes = {
      {"KEPLO_HOME= XDG_DATA_HOME='" + install.File("nowhere").string(), ""},
      {"KEPLO_HOME= XDG_DATA_HOME='" + install.File("data").string(), "keplo.cfg"},
      {"KEPLO_HOME='" + install.File("nowhere").string(), "keplo install"}};
  for (const auto& [home, told] : homes) {
    const Ran ran = tests::RunShell(home + words);
    EXPECT_EQ(ran.Status, 0) << home;
    EXPECT_NE(ran.Out.find("code G11000001001001"), std::string::npos) << ran.Out;
    EXPECT_TRUE(told.empty() ? ran.Err.empty() : ran.Err.find(told) != std::string::npos) << ran.Err;
  }
}

TEST(Learning, NamesNoProtocolForAFragment) {
  const Install install;
  const std::string words =
      " --hold 0" + NewPress(install, "piece.mode2", "--protocol NEC --code 100010 --repeats 0");
  const Ran text = RunKeplo("record" + words);
  EXPECT_NE(text.Out.find("6 bits is a fragment"), std::string::npos) << text.Out;
  EXPECT_EQ(text.Out.find("NEC"), std::string::npos) << text.Out;
  EXPECT_TRUE(json::parse(RunKeplo("record --json" + words).Out).at("protocol").is_null());
}

TEST(Learning, ReadsRealRecordingsOrSaysWhyNot) {
  std::ifstream index(CapturesFolder() / "index.json");
  if (!index)
    GTEST_SKIP() << "no real recordings at " << CapturesFolder() << "; KEPLO_CAPTURES names a folder";
  const json entries = json::parse(index);
  for (const std::string sampleTime : {"50", "55", "60"}) {
    int right = 0;
    for (const json& entry : entries) {
      std::string bits = entry.at("bits");
      if (entry.at("protocol") == "rc5") bits[2] = '0';
      const Ran ran = RunKeplo("record --json --sample-time " + sampleTime +
                               Quoted(CapturesFolder() / entry.at("file").get<std::string>()));
      const json code = json::parse(ran.Out).at("code");
      EXPECT_EQ(ran.Status, code.is_null() ? 1 : 0) << entry;
      EXPECT_TRUE(code.is_null() ? ran.Err.find("no code: ") != std::string::npos : code == bits)
          << entry << code << ran.Err;
      if (code == bits) ++right;
    }
    EXPECT_GE(right, 9) << sampleTime << " us";
  }
}

}  // namespace
}  // namespace keplo
