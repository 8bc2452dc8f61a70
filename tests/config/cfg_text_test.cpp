#include "config/cfg_text.h"

#include <gtest/gtest.h>

#include <random>

#include "config/config_builder.h"

namespace keplo::tests {
namespace {

/// The search as a walk that tries one place after the other.
int WalkForNeedle(const std::string& needle, const std::string& text, int start) {
  if (start < 1) return kNowhere;
  for (int place = start;;) {
    std::size_t equal = 0;
    while (equal < needle.size() && place - 1 + equal < text.size() &&
           std::tolower(needle[equal]) == std::tolower(text[place - 1 + equal])) {
      ++equal;
    }
    if (equal == needle.size()) return place + static_cast<int>(needle.size());
    if (++place + 1 > static_cast<int>(text.size())) return kNowhere;
  }
}

TEST(FindNoCase, AgreesWithASimpleSearch) {
  EXPECT_EQ(FindNoCase("abc", "xABCy", 1), 5);
  EXPECT_EQ(FindNoCase("y", "xABCy", 1), 0) << "the last character is not tried";
  std::mt19937 random(2024);
  const std::string alphabet = "gG01[aA,\r@`";
  const auto make = [&](std::size_t most) {
    std::string text(random() % (most + 1), ' ');
    for (char& character : text) character = alphabet[random() % alphabet.size()];
    return text;
  };
  for (int round = 0; round < 60000; ++round) {
    const std::string text = make(24), needle = make(4);
    const int start = static_cast<int>(random() % 31) - 2;
    ASSERT_EQ(FindNoCase(needle, text, start), WalkForNeedle(needle, text, start))
        << "\"" << needle << "\" in \"" << text << "\" from " << start;
  }
}

TEST(GetLineAt, EndsAtTheNextCr) {
  const std::string text = "PROTOCOL= 3\r\nITYPE=\r\nVEXIL= \r\n name \t\r\n";
  EXPECT_EQ(GetLineAt(text, 10), "3");
  EXPECT_EQ(GetLineAt(text, 20), "\r\nVEXIL=") << "an empty value without its blank takes the next line in";
  EXPECT_EQ(GetLineAt(text, 28), "") << "with its blank it does not";
  EXPECT_EQ(GetLineAt(text, 31), "name \t") << "a tab is no blank";
  EXPECT_EQ(GetLineAt("open end ", 6), "end");
  for (const int outside : {-1, 0, 41, 32767}) EXPECT_EQ(GetLineAt(text, outside), "") << outside;
}

TEST(Texts, AreChangedAndSearchedUpToTheirEnds) {
  for (const std::string row : {"-1|XYabc", "1|XYabc", "3|abXYc", "4|abcXY", "99|abcXY"}) {
    EXPECT_EQ(InsertText("abc", "XY", std::stoi(Parts(row)[0])), Parts(row)[1]) << row;
  }
  for (const std::string row : {"2|4|ae", "3|2|abcde", "0|99|", "9|12|abcde", "4|-7|abcde"}) {
    EXPECT_EQ(RemoveText("abcde", std::stoi(Parts(row)[0]), std::stoi(Parts(row)[1])), Parts(row)[2]) << row;
  }
  for (const std::string row : {"  a b |a b", "   |", "\t a\r|\t a\r"}) {
    std::string text = Parts(row)[0];
    EXPECT_EQ(Trimmed(text), Parts(row)[1]);
    EXPECT_EQ(TrimBoth(text) + "|" + text, Parts(row)[1] + "|" + Parts(row)[1]);
  }
  for (const auto& [position, forward, back] :
       {std::tuple(0, 0, 0), {1, 2, 0}, {3, 4, 2}, {5, 0, 4}, {99, 0, 4}}) {
    EXPECT_EQ(SeekForward("a,b,c", position, ','), forward) << position;
    EXPECT_EQ(SeekBack("a,b,c", position, ','), back) << position;
  }
}

}  // namespace
}  // namespace keplo::tests
