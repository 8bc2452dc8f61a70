#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "program.h"
#include "signal/signal_builder.h"

namespace keplo::tests {
namespace {

using nlohmann::json;

TEST(Learning, HearsEveryCommandThatItSends) {
  const Install install;
  const std::string sent = install.File("sent.mode2").string();
  int walked = 0;
  for (const std::string& line : Lines(install.Run("commands --json").Out)) {
    const json command = json::parse(line);
    if (command.at("command") == "EMPTY") continue;
    ++walked;
    const std::string reference = command.at("reference");
    ASSERT_EQ(install.Run("send '" + reference + "' --out '" + sent + "'").Status, 0);
    const json decoded = json::parse(install.Run("decode --json '" + sent + "'").Out);
    const json row = json::parse(install.Run("record --json '" + sent + "'").Out);
    EXPECT_EQ(decoded.at("code"), command.at("code")) << line;
    EXPECT_EQ(row.at("code"), command.at("code")) << line;
    EXPECT_EQ(row.at("known_as"), reference);
  }
  EXPECT_GE(walked, 15);
}

/// A press of two parts, of which each could be a frame, as an air conditioner's; no analysis reads it.
/// @param excess of marks, microseconds
std::string RawPress(const std::string& digits, int excess) {
  std::string text;
  for (const std::string& part : {digits, std::string("01101001110")}) {
    text += (text.empty() ? "" : "space 10000\n") + std::string("pulse 3500\nspace 1700\n");
    for (const char digit : part) {
      text += "pulse " + std::to_string(440 + excess) + "\nspace " +
              std::to_string(440 + 850 * (digit - '0') - excess) + "\n";
    }
    text += "pulse 440\n";
  }
  return text;
}

TEST(Learning, KeepsTheLengthsOfWhatNoAnalysisReads) {
  const Install install;
  const std::string cool = "0110111011011011010101101110110110110101", heat = cool.substr(1) + "1";
  const auto press = [&](const std::string& name, const std::string& text) {
    return Quoted(install.Write(name, text));
  };
  const std::string a = press("a.mode2", RawPress(cool, 50)), b = press("b.mode2", RawPress(cool, 90));
  const std::string c = press("c.mode2", RawPress(heat, 50)), d = press("d.mode2", RawPress(heat, 90)),
                    named = " --name 'NEC&COOL'";
  const std::string code = install.Press("code.mode2", "--protocol SONY --code 101010010000");
  const std::string next = install.Press("next.mode2", "--protocol SONY --code 101010010001");
  const std::string sent = Quoted(install.File("sent.mode2"));
  const std::string frame =
      "--protocol NEC --repeats 0 --code " + std::string(100, '0') + std::string(60, '1');
  const std::string longer =
      install.Press("long.mode2", frame) + install.Press("again.mode2", frame + " --seed 2");
  ExpectTold(install,
             {{"settings ANALYSIS 0", 0, {}},
              {"learn" + a + b + named, 1, {"The second look can", "settings ANALYSIS 1"}},
              {"settings ANALYSIS 1", 0, {}},
              {"record" + a, 1, {"keplo learn can store it as a raw command"}},
              {"learn" + a + named, 1, {"not yet validated", "give recordings of two presses"}},
              {"learn" + a + c + named, 1, {"give two of each in turns"}},
              {"learn" + a + b + named, 0, {"NEC&COOL learned as raw: G", "109 lengths\n"}},
              {"learn" + b + a + " --name 'NEC&COLD'", 1, {"This command exist as COOL"}},
              {"learn" + c + c + " --name 'NEC&HEAT'", 1, {"give recordings of two presses"}},
              {"learn" + c + d + " --name 'NEC&HEAT'", 0, {"learned as raw"}},
              {"decode --json" + b, 0, {R"("stage":"raw","protocol":"RAW")"}},
              {"record" + c, 0, {", known as NEC&HEAT"}},
              {"events add 'NEC&COOL' --name Colder", 0, {}},
              {"monitor --once --replay" + b + c, 1, {"Colder", "is bound to NEC&HEAT"}},
              {"send 'NEC&COOL' --out" + sent, 0, {"NEC&COOL written"}},
              {"record" + sent, 0, {"known as NEC&COOL"}},
              {"learn --raw" + code + " --name 'NEC&ONCE'", 1, {"This command exist as TV_POWER"}},
              {"learn --raw" + next + " --name 'NEC&RAWNEXT'", 0, {"learned as raw"}},
              {"learn" + next + " --name 'SONY&NEXT'", 1, {"exist as RAWNEXT", "heard no more"}},
              {"learn" + longer + " --name 'SONY&LONG'", 0, {"as raw", "the monitor does not read its code"}},
              {"forget 'SONY&LONG'", 0, {}}});
  std::filesystem::remove(install.File("raw/NEC.mode2"));
  ExpectTold(install,
             {{"send 'NEC&COOL'", 1, {"COOL, HEAT and RAWNEXT", "missing or damaged", "learn them again"}}});
  std::filesystem::create_directory(install.File("raw/NEC.mode2"));
  ExpectTold(install, {{"forget 'NEC&COOL'", 0, {"HEAT", "move away"}},
                       {"learn" + a + b + named, 3, {"NEC.mode2: Is a directory", "move away"}}});
}

TEST(Learning, SendsANewToggleDigitWithEachPress) {
  const Install install;
  const Ran sent = RunShell("'" KEPLO_PROGRAM "' send RC5 TV_MUTE --count 03 --out -" + install.Option() +
                            " | '" KEPLO_PROGRAM "' record --json -");
  std::string toggles;
  for (const std::string& line : Lines(sent.Out)) toggles += json::parse(line).at("toggle").dump();
  EXPECT_EQ(toggles, "101");
}

TEST(Learning, TellsWhatTheWindowShows) {
  const Install install;
  const std::string press = install.Press("sony.mode2", "--protocol SONY --code 101010010000 --jitter 0");
  json row = json::parse(install.Run("record --json" + press).Out);
  EXPECT_EQ(row.at("pulse_us"), row.at("base_t").get<int>() * 55);
  EXPECT_FALSE(row.at("ones").empty() || row.at("zeros").empty());
  for (const char* field : {"file", "ones", "zeros", "base_t", "pulse_us"}) row.erase(field);
  EXPECT_EQ(row, json::parse(R"({"press":1,"protocol":"SONY","code":"101010010000","bits":12,"repeats":true,
    "sync_type":2,"address":1,"command":21,"extended":null,"toggle":null,"known_as":"SONY&TV_POWER",
    "analysis":"second"})"));
  const Ran silence =
      install.Run("record --json" + Quoted(install.Write("none.cap", std::string(1000, '\0'))));
  ExpectPart(silence.Err, "there is no signal");
  const json nothing = json::parse(silence.Out);
  for (const auto& [field, value] : nothing.items())
    EXPECT_EQ(value.is_null(), field != "file" && field != "press") << field;
  const std::string piece = install.Press("piece.mode2", "--protocol NEC --code 100010 --repeats 0");
  const Ran text = install.Run("record --hold 0" + piece);
  ExpectPart(text.Out, "6 bits is a fragment");
  EXPECT_EQ(text.Out.find("NEC"), std::string::npos) << "a fragment names no protocol: " << text.Out;
}

/// The copies of a frame that is held confirm nothing.
TEST(Learning, WantsASecondPressWhereTheRemoteSendsOneFrame) {
  const std::string firstFrame = " | head -n 25";  // SONY sends each three times
  for (const auto& [protocol, code, nextCode] :
       {std::tuple("SONY", "001000100010", "001000100010"),
        {"RC5", "11000001001001", "11100001001001"}}) {  // with the next toggle digit
    const Install install;
    const std::string synth = std::string("--repeats 0 --protocol ") + protocol + " --code ";
    const std::string press = install.Press("press.mode2", synth + code + firstFrame);
    const std::string next = install.Press("next.mode2", synth + nextCode + firstFrame);
    const std::string held =
        install.Press("held.mode2", std::string("--protocol ") + protocol + " --code " + code);
    const std::string learned = protocol + std::string("&ONCE "),
                      name = " --name '" + std::string(protocol) + "&ONCE'";
    ExpectTold(install,
               {{"learn" + press + press + name, 1, {"not yet validated", "two equal presses"}},
                {"learn" + press + next + name, 0, {learned + "learned: G"}},
                {"forget '" + learned.substr(0, learned.size() - 1) + "'", 0, {learned + "forgotten"}},
                {"learn" + held + press + " --name 'NEC&OTHER'",
                 0,
                 {"NEC&OTHER learned: G", "what [NEC] sends for it is not heard as this code"}}});
  }
}

TEST(Learning, RefusesWithTheReason) {
  const Install install;
  const std::string press = install.Press("new.mode2", "--protocol RC5 --code 11000001001001");
  const std::string known = install.Press("known.mode2", "--protocol SONY --code 101010010000");
  std::string oddRc5;  // half bits that make no pairs
  for (const char half : std::string("100110100100110110101101001")) oddRc5.append(16, half);
  const auto odd = Quoted(install.Write("odd.cap", Bytes(oddRc5 + std::string(1600, '0') + oddRc5)));
  const std::string before = install.Config();
  install.Write("ports.conf", "8 = replay:" + install.File("new.mode2").string() + "\n");
  ExpectTold(
      install,
      {{"learn" + press + " --protocol Template --name NINE", 1, {"This protocol is read-only."}},
       {"learn" + known + " --protocol RC5 --name OTHER",
        1,
        {"This command exist as TV_POWER in the protocol SONY"}},
       {"learn" + press + " --name NINE", 2, {"--protocol"}},
       {"record" + odd, 1, {"no code: its frames differ", "as a raw command"}},
       {"learn" + known + press + " --name 'RC5&TWO'", 1, {": G101010010000 G11000001001001"}},
       {"forget NEC NOTHING", 1, {"NOTHING"}},
       {"forget NEC", 2, {"COMMAND"}},
       {"commands NOTHING", 1, {"no protocol \"NOTHING\""}},
       {"send 'NEC&NOTHING'", 1, {"NOTHING"}},
       {"send NOTHING TV_POWER", 1, {"NOTHING"}},
       {"send NEC", 2, {"COMMAND"}},
       {"send --code G101010", 2, {"--protocol"}},
       {"send NEC TV_POWER --out= --count=3", 2, {"--out: The value is empty"}},
       {"send NEC TV_POWER --pulse 0", 2, {"--pulse"}},
       {"send NEC TV_POWER --port 9", 1, {"COM 9 has no device on this machine, so nothing goes on air"}},
       {"send NEC TV_POWER --port 8", 1, {"Nothing goes on air by COM 8. It plays recordings"}},
       {"learn" + press + " --name 'NEC&TV_MUTE'", 1, {"in use for the current protocol. TV_MUTE stands in"}},
       {"send NEC TV_POWER --out /dev/full", 3, {"/dev/full: No space left on device"}},
       {"send NEC TV_POWER --out -", 0, {"pulse "}},
       {"send --code G10a010 --protocol NEC", 1, {"Please use only 1's and 0's for the code"}},
       {"send --code G1010 --protocol NEC", 1, {"too short"}},
       {"send --code G101010 --protocol Recorded",
        1,
        {"Information about received command is not complete!"}}});
  EXPECT_EQ(install.Config(), before);
}

TEST(Learning, TellsWhichCodesOfAnIndexWereLeftOutAndWhy) {
  const Install install;
  install.FillConfig(30);  // bytes for one more command, and not for two
  const auto index = Quoted(install.Write("index.json", R"([
    {"protocol":"nec","key":"TWO","bits":"10102\u001b[1m"}, {"protocol":"rc5","device":"TV","key":"9 !","bits":"11 0"},
    {"protocol":"rc5","key":"SEVEN","bits":"11100001001001"},
    {"protocol":"rc5","key":"EIGHT","bits":"11100001001010"},
    {"protocol":"rc5","key":"NINE","bits":"11100001001011"}])"));
  const auto large = Quoted(install.Write("large.json", std::string(1'100'000, '[')));
  ExpectTold(install, {{"install --teach" + index,
                        3,
                        {"\n1 commands learned from", "index.json, entry 1: NEC&TWO was not learned:",
                         "and not 10102 [1m\n", "index.json, entry 2: RC5&TV-9__ was not learned:",
                         "stopped at", "index.json, entry 4; 2 codes not learned: "}},
                       {"send RC5 SEVEN --out -", 0, {"pulse "}},
                       {"install --teach" + large, 2, {"large.json", "several files"}},
                       {"install --teach /proc/self/mem", 2, {"/proc/self/mem: Input/output error"}}});
}

TEST(Learning, ExplainsPressesWithoutAnInstallAndTellsWhatIsWrongWithANamedOne) {
  const Install install;
  const std::string words =
      "' '" KEPLO_PROGRAM "' record" + install.Press("press.mode2", "--protocol RC5 --code 11000001001001");
  std::filesystem::create_directories(install.File("data/keplo/keplo.cfg"));
  for (const auto& [home, folder, told] : {std::tuple("KEPLO_HOME= XDG_DATA_HOME='", "nowhere", ""),
                                           {"KEPLO_HOME= XDG_DATA_HOME='", "data", "keplo.cfg"},
                                           {"KEPLO_HOME='", "nowhere", "keplo install"}}) {
    const Ran ran = RunShell(home + install.File(folder).string() + words);
    EXPECT_EQ(ran.Status, 0) << home;
    ExpectPart(ran.Out, "code G11000001001001");
    ExpectPart(ran.Err, told);
    EXPECT_EQ(ran.Err.empty(), std::string(told).empty()) << ran.Err;
  }
}

}  // namespace
}  // namespace keplo::tests
