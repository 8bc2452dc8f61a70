#include "formats/pulse_text.h"

#include <gtest/gtest.h>

namespace keplo {
namespace {

using Trains = std::vector<PulseTrain>;

TEST(ParsePulseText, ReadsPressesInBothForms) {
  struct Case {
    std::string Name, Text;
    Trains Presses;
  };
  const std::vector<Case> cases = {
      {"pulse and space lines", "pulse 900\nspace 450\npulse 56\n", {{900, 450, 56}}},
      {"comments, blank lines, line ends of all kinds",
       "# a key\r\n\r\npulse 900 # mark\r\n  // nothing\n\tspace\t450// space\npulse 56",
       {{900, 450, 56}}},
      {"the carrier is read over", "carrier 38000\npulse 5\ncarrier 36000\npulse 6\n", {{11}}},
      {"a space ahead of the first mark is dropped", "space 16777215\npulse 9\nspace 4\n", {{9, 4}}},
      {"neighbours of one kind are summed", "pulse 5\npulse 6\nspace 1\nspace 2\npulse 3\n", {{11, 3, 3}}},
      {"a timeout closes the press", "pulse 5\ntimeout 30\npulse 6\n", {{5, 30}, {6}}},
      {"a timeout behind nothing is nothing", "timeout 30\npulse 6\ntimeout 5\n", {{6, 5}}},
      {"150 ms of silence part two presses",
       "pulse 5\nspace 149999\npulse 6\nspace 150000\npulse 7\n",
       {{5, 149999, 6, 150000}, {7}}},
      {"silence in two lines counts as one",
       "pulse 5\nspace 90000\nspace 90000\npulse 7\n",
       {{5, 180000}, {7}}},
      {"a line of signed lengths is a press",
       "+900 -450 +56\n+900 -450 +57 -3\n",
       {{900, 450, 56}, {900, 450, 57, 3}}},
      {"its silence may stand in a comment", "+900 -450 +56 # timeout 85000\n", {{900, 450, 56, 85000}}},
      {"other comments say nothing", "+900 -450 +56 # timeout soon\n+5 # key 7\n", {{900, 450, 56}, {5}}},
      {"a signed line ends a press of lines", "pulse 5\nspace 6\n+7\n", {{5, 6}, {7}}},
  };
  for (const Case& c : cases) EXPECT_EQ(ParsePulseText(c.Text, "x"), c.Presses) << c.Name;
}

TEST(ParsePulseText, TellsWhereAndWhatIsWrong) {
  const std::string length = ", expected a length from 1 to 16777215 microseconds";
  const std::string noPress =
      "x: there is no key press in it; expected lines such as \"pulse 560\" and \"space 560\"";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", noPress},
      {"# nothing\nspace 500\ntimeout 3\n", noPress},
      {"pulse 1\n\nspace ten\n", "x, line 3: found \"ten\"" + length},
      {"pulse\n", "x, line 1: found the end of the line" + length},
      {"pulse 0\n", "x, line 1: found \"0\"" + length},
      {"pulse -5\n", "x, line 1: found \"-5\"" + length},
      {"pulse 16777216\n", "x, line 1: found \"16777216\"" + length},
      {"pulse 99999999999999999999\n", "x, line 1: found \"99999999999999999999\"" + length},
      {"pulse 5us\n", "x, line 1: found \"5us\"" + length},
      {"pulse 5 6\n", "x, line 1: found \"6\", expected the end of the line"},
      {"code 38000\n",
       "x, line 1: found \"code\", expected \"pulse\", \"space\", \"timeout\" or a signed length such as "
       "+560"},
      {"+5 -6 7\n", "x, line 1: found \"7\", expected a signed length such as +560 or -560"},
      {"+5 -\n", "x, line 1: found the end of the line" + length},
      {std::string(100, 'a'),
       "x, line 1: found \"" + std::string(40, 'a') +
           "\", expected \"pulse\", \"space\", \"timeout\" or a signed length such as +560"},
  };
  for (const auto& [text, message] : cases) {
    try {
      ParsePulseText(text, "x");
      ADD_FAILURE() << "accepted: " << text;
    } catch (const FormatError& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
}

TEST(PulseText, IsReadBackAsItWasWritten) {
  for (const PulseTrain& train : {PulseTrain{9000, 4500, 560, 90000}, PulseTrain{900, 450, 56}}) {
    EXPECT_EQ(ParsePulseText(Mode2Text(train), "x"), Trains{train});
    EXPECT_EQ(ParsePulseText(OneLineText(train) + OneLineText(train), "x"), (Trains{train, train}));
  }
  EXPECT_EQ(Mode2Text({9, 4}), "pulse 9\nspace 4\n");
  EXPECT_EQ(OneLineText({9, 4, 5}), "+9 -4 +5\n");
}

}  // namespace
}  // namespace keplo
