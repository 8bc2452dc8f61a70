#include "formats/pulse_text.h"

#include <gtest/gtest.h>

namespace keplo {
namespace {

using Trains = std::vector<PulseTrain>;

TEST(ParsePulseText, ReadsPressesInBothForms) {
  const auto reads = [](const std::string& name, const std::string& text, const Trains& presses) {
    EXPECT_EQ(ParsePulseText(text, "x"), presses) << name;
  };
  reads("comments, blank lines, line ends of all kinds",
        "# a key\r\n\r\npulse 900 # mark\r\n  // nothing\n\tspace\t450// space\npulse 56", {{900, 450, 56}});
  reads("the carrier is read over", "carrier 38000\npulse 5\ncarrier 36000\npulse 6\n", {{11}});
  reads("a space before the first mark is dropped", "space 16777215\npulse 9\nspace 4\n", {{9, 4}});
  reads("neighbours of one kind are summed", "pulse 5\npulse 6\nspace 1\nspace 2\npulse 3\n", {{11, 3, 3}});
  reads("a timeout closes the press", "pulse 5\ntimeout 30\npulse 6\n", {{5, 30}, {6}});
  reads("a timeout after nothing is nothing", "timeout 30\npulse 6\ntimeout 5\n", {{6, 5}});
  reads("150 ms of silence part two presses", "pulse 5\nspace 149999\npulse 6\nspace 150000\npulse 7\n",
        {{5, 149999, 6, 150000}, {7}});
  reads("silence in two lines counts as one", "pulse 5\nspace 90000\nspace 90000\npulse 7\n",
        {{5, 180000}, {7}});
  reads("a line of signed lengths is a press", "+900 -450 +56\n+900 -450 +57 -3\n",
        {{900, 450, 56}, {900, 450, 57, 3}});
  reads("its silence may stand in a comment", "+900 -450 +56 # timeout 85000\n", {{900, 450, 56, 85000}});
  reads("other comments say nothing", "+900 -450 +56 # timeout soon\n+5 # key 7\n", {{900, 450, 56}, {5}});
  reads("a signed line ends a press of lines", "pulse 5\nspace 6\n+7\n", {{5, 6}, {7}});
}

TEST(ParsePulseText, TellsWhereAndWhatIsWrong) {
  const auto tells = [](const std::string& text, const std::string& message) {
    try {
      ParsePulseText(text, "x");
      ADD_FAILURE() << "accepted: " << text;
    } catch (const FormatError& error) {
      EXPECT_EQ(error.what(), message);
    }
  };
  const std::string length = ", expected a length from 1 to 16777215 microseconds",
                    first = "x, line 1: found ";
  const std::string noPress =
      "x: there is no key press in it; expected lines such as \"pulse 560\" and \"space 560\"";
  const std::string words = "\", expected \"pulse\", \"space\", \"timeout\" or a signed length such as +560";
  for (const std::string word : {"0", "-5", "16777216", "99999999999999999999", "5us"}) {
    tells("pulse " + word + "\n", first + "\"" + word + "\"" + length);
  }
  for (const std::string text : {"pulse\n", "+5 -\n"}) tells(text, first + "the end of the line" + length);
  for (const std::string text : {"", "# nothing\nspace 500\ntimeout 3\n"}) tells(text, noPress);
  tells("pulse 1\n\nspace ten\n", "x, line 3: found \"ten\"" + length);
  tells("pulse 5 6\n", first + "\"6\", expected the end of the line");
  tells("code 38000\n", first + "\"code" + words);
  tells(std::string(100, 'a'), first + "\"" + std::string(40, 'a') + words);
  tells("+5 -6 7\n", first + "\"7\", expected a signed length such as +560 or -560");
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
