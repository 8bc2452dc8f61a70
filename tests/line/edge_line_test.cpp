#include <gtest/gtest.h>

#include "line/serial/serial_line.h"
#include "line_script.h"
#include "telling_port.h"

namespace keplo::tests {
namespace {

void Play(TellingPort& port, const PulseTrain& press, const std::string& telling) {
  port.Play(press, telling);
}
void Play(SimulatedPort& port, const PulseTrain& press, const std::string& /*telling*/) { port.Play(press); }

/// What a line makes of a script. A character in front of a length is how the edge is told at which it
/// begins; a last one alone stands for the edge at the end.
template <typename Port>
std::string Heard(const std::string& script, std::int16_t receiver = 0, Analysis reader = Analysis::Second) {
  Port port;
  port.RestLevel = receiver == 0;
  LineOptions options;
  options.ReadBy = &reader;
  std::string told;
  SerialLine line(port, kSimulatedDevice, receiver, options,
                  [&](const std::string& text) { told += text.substr(text.find(' ')) + ";"; });
  EXPECT_EQ(line.OpenCom(1), 1);
  port.SleepUntil(port.Now() + std::chrono::milliseconds(100));
  const std::string text = Script(port, line, script, [&](const std::string& lengths) {
    const Played played = ReadPlayed(lengths);
    Play(port, played.Lengths, played.Marks);
  });
  return text + told;
}

struct Row {
  const char* Name;
  std::string (*Heard)(const std::string& script);
  const char* Script;
  std::string Text;
};

const auto kTells = [](const std::string& script) { return Heard<TellingPort>(script); };
const auto kMouse = [](const std::string& script) { return Heard<TellingPort>(script, 1); };
const auto kSampled = [](const std::string& script) { return Heard<SimulatedPort>(script); };
const auto kSampledMouse = [](const std::string& script) { return Heard<SimulatedPort>(script, 1); };
const auto kFirst = [](const std::string& script) { return Heard<TellingPort>(script, 0, Analysis::First); };
const auto kSampledFirst = [](const std::string& script) {
  return Heard<SimulatedPort>(script, 0, Analysis::First);
};

const std::string kLamp =
    " rests at 0, where a receiver of the other kind does; change the setting ITYPE, or look for a lamp.;";
const std::string kGone = " is gone. Plug it in again; it is opened by itself.;";

TEST(SerialLine, HearsWhatItsDriverTellsOrHowItsLineLooks) {
  const Row rows[] = {
      {"asked late", kTells, "p900,500,700,. w60000 d m400 d l q",
       "0 [900 500 700] 16 9 13 2466/313 20..2120 @139002; 1 0 0 0 0 0 rest 0 "},
      {"asked within the signal", kTells, "p900,500,700,. w1000 d m400",
       "0 [900 500 700] 16 9 13 2466/313 20..2120 @138132; "},
      {"the mouse receiver", kMouse, "p900,500,700,. w1000 d m400 d",
       "1 [900 500 700] 16 9 13 2466/313 20..2120 @138132; 0 "},
      {"two signals in the log", kTells,
       "p900,500,900,. w1000 d m400 w700 p900,500,900,. w1000 d w10000 m400",
       "0 [900 500 900] 16 9 17 2470/314 20..2320 @138332; 0 [900 500 900] 16 9 17 2470/314 139052..141352 "
       "@278034; "},
      {"silence that ends a capture", kTells, "p900,500,900,137000,700,. w1000 d m400 w1000 d m400",
       "0 [900 500 900] 16 9 17 2470/314 20..2320 @138332; 0 [700] 13 2467/310 139320..140020 @276032; "},
      {"silence that does not", kTells, "p900,500,900,135900,700,. w1000 d m400",
       "0 [900 500 900 135900 700] 16 9 17 2471 12 675/400 20..138920 @176932; "},
      {"on past a full buffer", kTells,
       "p900,500,700,30000,600,400,600,. w1000 d m50 d w10000 d w10000 d m50 d w6000 d",
       "0 [900 500 700] 16 9 13 362/50 20..2120 @22132; 1 0 0 [600 400 600] 11 7 11 371/50 32120..33720 "
       "@54138; 1 1 "},
      {"an edge at its end", kTells, "p900,500,20600,7000,600,. w1000 d m50 w1000 d w6000 d",
       "0 [900 500 20600] 16 9 375/50 20..22020 @22032; 1 0 "},
      {"a gap too short for frames", kTells, "p900,500,700,5999,600,. w1000 d m13 w5000 d w2000 d",
       "0 [900 500 700] 16 9 13 66/13 20..2120 @6132; 1 1 "},
      {"a gap of frames", kTells, "p900,500,700,6000,600,. w1000 d m13 w5000 d w2000 d m13",
       "0 [900 500 700] 16 9 13 66/13 20..2120 @6132; 0 0 [600] 11 93/13 8120..8720 @14136; "},
      {"forgotten within a frame", kTells,
       "p900,500,700,5000,600,12000,600,. w1000 d f w3000 d w3500 d w3400 d w10000 d m50",
       "0 1 1 1 0 [600] 11 389/50 19720..20320 @41910; "},
      {"forgotten, and over", kTells, "p900,500,700,. w1000 d f w50000 d", "0 1 "},
      {"forgotten in long light", kTells, "p900,500,200000,. w2000 d f w97000 d w3000 d m50",
       "0 1 0 [22000] 400/50 102006..124006 @124012; " + kLamp},
      {"a lamp", kTells, "p300000 w1000 d m50 d q d w200000 d w101000 d p900,500,700,. w1000 d m50",
       "0 [22000] 400/50 20..22020 @23008; 1 rest 0 1 1 1 0 [900 500 700] 16 9 13 362/50 324036..326136 "
       "@346148; " +
           kLamp},
      {"an end not told", kTells, "p900,500,5000,!70000,600,400,700,. w1000 d m400 l",
       "0 [900 500 20012 54988 600 400 700] 364 1000 11 7 13 1805/400 20..78120 @176132; 0 0 0 1 0 "},
      {"an edge not told", kTells, "p900,!500,700,. w1000 d m50 l",
       "0 [1400 6 694] 38 362/50 20..2120 @22132; 0 0 0 1 0 "},
      {"two edges not told", kTells, "p900,!500,!700,. w1000 d m50 l",
       "0 [2100] 38 362/50 20..2120 @22132; 0 0 0 2 0 "},
      {"a late edge", kTells, "p900,~5000,7000,. w1000 d m50 l",
       "0 [3880 2020 7000] 71 36 128 165/50 20..12920 @22932; 0 0 0 0 0 "},
      {"edges told twice", kTells, "p900,=500,~7000,= w1000 d m50 l",
       "0 [900 3480 4020] 16 64 73 247/50 20..8420 @22432; 0 0 0 0 0 "},
      {"an edge not counted", kTells, "p900,?500,700,. w1000 d m50 l",
       "0 [2100] 38 362/50 20..2120 @22132; 0 0 0 0 0 "},
      {"an edge as the thread looks", kTells, "p23,500,900,. w1000 d m50 l",
       "0 [12 511 900] 10 16 374/50 20..1443 @22455; 0 0 0 1 0 "},
      {"the first not told", kTells, "p!900,500,700,. w1000 d m50 l",
       "0 [6 494 700] 9 13 378/50 920..2120 @23132; 0 0 0 1 0 "},
      {"none told", kTells,
       "p!900,!500,!700,!9000 w300 d m50 w200000 p!900,!500,!700,!9000 w300 d m50 l d w100000 p900,500,. "
       "w300 d m50 l",
       "0 [] 11 9 13 367/50 @22247; 1 [] 11 9 13 367/50 @244506; 800 0 1 0 0 1 0 [] 11 389/50 @372791; 1200 "
       "0 1 0 0 "},
      {"told, not believed", kTells, "d p900,500,700,30000,600,. w450 m50 d l w40000 d",
       "1 [] 16 10 12 362/50 @21975; 1 400 0 1 0 0 0 "},
      {"told, all of it over", kTells, "d p100,150,130,. w450 m50 l",
       "1 [] 1 3 2 394/50 @21975; 400 1 1 0 0 "},
      {"counts that miss some", kTells,
       "p900,?500,900,?500,900,?500,900,. w60000 d m50 w500000 p9000,900,900,. d w1000 m50 l q",
       "0 [5100] 93 307/50 20..5120 @60002; 0 [9000 900 900] 164 16 16 204/50 560022..570822 @582834; 0 0 0 "
       "0 0 rest 0 "},
      {"late and lost", kTells,
       "p9000,?3000,9000,?3000,9000,?3000,9000,. w60000 d m50 w500000 p9000,900,900,. d w100 m50 l q",
       "1 [] 400/50 @81957; 1 [] 16 384/50 @613004; 800 0 0 0 0 rest 0 "},
      {"rest and wake", kTells, "d w1000000 q p900,500,900,. w5000 q d m400 w999000 q",
       "1 rest 1000 rest 0 0 [900 500 900] 16 9 17 2470/314 1000028..1002328 @1139010; rest 1000 "},
      {"a recording", kTells, "p900,500,700,30000,600,400,600,. w1000 r50 r10",
       "1 [600 400 600] 11 7 11 371/50 32120..33720 @54732; 0 [600 400 600] /0 32120..33720 @10055134; "},
      {"a recording of what is not told", kTells, "p!900,500,700,30000,600,400,600,. r50",
       "1 [] 11 7 11 371/50 @54067; "},
      {"gone within a capture", kTells, "p900,500,700,. w1000 d g2000 m50 d d q",
       "0 [] /0 @22146; 1 1 rest 2000 " + kGone},
      {"gone within a recording", kTells, "p900,500,700,. w1000 g1000 r400 d",
       "0 [] /0 @10001000; 1 " + kGone},
      {"its own light", kTells, "p900,500,900,30000,500,500,40000,. s560 w20000 d w12000 d m50 l",
       "sent 1 0 [500 500 21000] 9 9 382/50 32320..54320 @54488; 0 0 0 0 0 "},
      {"a pulse too long", kTells, "p900,500,900,. s20001 s20000 d m50 l",
       "not sent sent 1 [] /0 @161006; 0 0 0 0 0  pulse of 20001 us is not sent. Use 1 to 20000 us.;"},
      {"zone hardware", kTells, "p900,500,700,. w10000 z d p900,500,700,. w60000 d m50",
       "zone 9 1 0 [900 500 700] 16 9 13 362/50 810050..812150 @870032; "},
      {"sampled", kSampled, "p900,500,700,. w100 d m400 d l w1000000 q",
       "0 [] 15 9 13 2467/313 @138044; 1 2509 0 0 0 0 rest 0 "},
      {"sampled, the mouse receiver", kSampledMouse, "p900,500,700,. w100 d m400 d l w1000000 q",
       "1 [] 15 9 13 2467/313 @138044; 0 2509 0 0 0 0 rest 0 "},
      {"shaped", kFirst, "p2500,500,1300,500,700,480,1320,500,680,520,720,500,1280,. w1000 d m50",
       "0 [2500 500 1300 500 700 480 1320 500 680 520 720 500 1280] 44 11 21 11 11 11 22 11 11 11 11 11 22 "
       "192/50 20..11520 @22532; "},
      {"shaped, sampled", kSampledFirst,
       "p2500,500,1300,500,700,480,1320,500,680,520,720,500,1280,. w100 d m50",
       "0 [] 42 11 21 11 11 11 22 11 11 11 11 11 22 194/50 @22049; "},
      {"sampled on", kSampled, "p900,500,700,30000,600,400,600,. w100 d m40 d w8600 d m50 d l",
       "0 [] 15 9 13 283/40 @17649; 1 0 [] 8 7 11 374/50 @54234; 1 720 0 0 0 0 "},
      {"sampled frames", kSampled,
       "p900,500,700,5000,600,12000,600,. w100 d f w200 d w5000 d w2000 d w4700 d m50",
       "0 1 1 1 0 [] 8 392/50 @41815; "},
      {"a lamp, sampled", kSampled, "p300000 w100 d m50 d q d w200000 d w101000 d p900,500,700,. w100 d m50",
       "0 [] 400/50 @22049; 1 rest 0 1 1 1 0 [] 15 9 13 363/50 @345106; " + kLamp},
      {"a lamp when it is back", kSampled, "p9000000 w100 d m50 d g1000 w2000 d w2000000 g d",
       "0 [] 400/50 @22049; 1 1 0 " + kLamp + kGone + " is back.;"},
      {"back again", kSampled, "d g1000 d w2000 d q w1990000 d g d w20000 d q p900,. d m50 s560",
       "1 1 1 rest 2000 1 1 1 rest 0 0 [] 17 383/50 @2033985; sent " + kGone + " is back.;"},
      {"a sampled recording", kSampled, "p900,500,700,30000,600,400,600,. r50 r10 q",
       "1 [] 10 8 11 371/50 @54095; 0 [] /0 @10054113; rest 0 "},
      {"gone within a sampled one", kSampled, "p900,500,700,. w100 g1000 r400 d q",
       "0 [] /0 @10000100; 1 rest 2 " + kGone}};
  for (const Row& row : rows) EXPECT_EQ(row.Heard(row.Script), row.Text) << row.Name;
}

}  // namespace
}  // namespace keplo::tests
