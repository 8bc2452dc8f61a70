#include "config/cfg_text.h"

#include <gtest/gtest.h>

#include <random>

namespace keplo {
namespace {

/// The search as a walk that tries one place after the other.
int WalkForNeedle(const std::string& needle, const std::string& text, int start) {
  for (int place = start;;) {
    std::size_t equal = 0;
    while (equal < needle.size() && place - 1 + equal < text.size() &&
           std::tolower(needle[equal]) == std::tolower(text[place - 1 + equal])) {
      ++equal;
    }
    if (equal == needle.size()) return place + static_cast<int>(needle.size());
    if (++place + 1 > static_cast<int>(text.size())) return 0;
  }
}

TEST(FindNoCase, GivesThePlaceBehindTheMatch) {
  EXPECT_EQ(FindNoCase("abc", "xABCy", 1), 5);
  EXPECT_EQ(FindNoCase("C", "xABCy", 1), 5);
  EXPECT_EQ(FindNoCase("y", "xABCy", 1), 0) << "the last character is not tried";
  EXPECT_EQ(FindNoCase("y", "xABCy", 5), 6);
  EXPECT_EQ(FindNoCase("", "xABCy", 3), 3);
  EXPECT_EQ(FindNoCase("@", "`.", 1), 0) << "only letters have two cases";
  EXPECT_EQ(FindNoCase("abc", "xABCy", 0), 0);
  EXPECT_EQ(FindNoCase("", "xABCy", -4), 0);
}

TEST(FindNoCase, AgreesWithAWalkFromPlaceToPlace) {
  std::mt19937 random(2024);
  const std::string alphabet = "gG01[aA,\r";
  const auto make = [&](std::size_t most) {
    std::string text(random() % (most + 1), ' ');
    for (char& character : text) character = alphabet[random() % alphabet.size()];
    return text;
  };
  for (int round = 0; round < 60000; ++round) {
    const std::string text = make(24), needle = make(4);
    const int start = 1 + static_cast<int>(random() % 28);
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

TEST(Splices, KeepTheRestOfTheText) {
  EXPECT_EQ(InsertText("abc", "XY", 1) + InsertText("abc", "XY", 3) + InsertText("abc", "XY", 4),
            "XYabcabXYcabcXY");
  EXPECT_EQ(InsertText("abc", "XY", 99) + InsertText("abc", "XY", -1), "abcXYXYabc");
  EXPECT_EQ(RemoveText("abcde", 2, 4), "ae");
  EXPECT_EQ(RemoveText("abcde", 3, 2), "abcde");
  EXPECT_EQ(RemoveText("abcde", 0, 99), "");
  EXPECT_EQ(RemoveText("abcde", 9, 12) + RemoveText("abcde", 4, -7), "abcdeabcde");
}

TEST(TrimBoth, TakesBlanksAlone) {
  for (const auto& [text, trimmed] : std::vector<std::pair<std::string, std::string>>{
           {"  a b ", "a b"}, {"   ", ""}, {"\t a\r", "\t a\r"}}) {
    std::string argument = text;
    EXPECT_EQ(TrimBoth(argument), trimmed);
    EXPECT_EQ(argument + "|" + std::string(Trimmed(text)), trimmed + "|" + trimmed);
  }
}

TEST(Seeks, EndAtTheEndsOfTheText) {
  EXPECT_EQ(SeekForward("a,b,c", 3, ','), 4);
  EXPECT_EQ(SeekForward("a,b,c", 5, ',') + SeekForward("a,b,c", 0, ','), 0);
  EXPECT_EQ(SeekBack("a,b,c", 3, ','), 2);
  EXPECT_EQ(SeekBack("a,b,c", 99, ','), 4);
  EXPECT_EQ(SeekBack("a,b,c", 1, ','), 0);
}

}  // namespace
}  // namespace keplo
