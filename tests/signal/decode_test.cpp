#include "signal/decode.h"

#include <gtest/gtest.h>

#include "signal/timing.h"
#include "signal_builder.h"

namespace keplo {
namespace {

using tests::Runs;

TEST(WalkRuns, ClassifiesRunsAndClosesWithASpaceMark) {
  const std::vector<std::pair<std::vector<int>, std::optional<std::string>>> cases = {
      {{45, 45, 7, 18, 7, 7, 18, 200}, "Gg1001011g"},
      {{10, 30, 30, 1}, "1000111g"},  // the last space closes, however short it is
      {{0, 20, 10, 5}, "1001g"},      // a space at the head brings a lone 1 ahead of it
      {{10, 20, 10}, std::nullopt},   // ends in a mark
      {{}, std::nullopt},
  };
  for (const auto& [runs, symbols] : cases) EXPECT_EQ(WalkRuns(Runs(runs), 10), symbols) << Runs(runs);
}

TEST(IsolateFrame, TakesTheFirstStretchBetweenTwoMarks) {
  const std::vector<std::pair<std::string, std::optional<std::string>>> cases = {
      {"Gg1001011g", "1001011"}, {"0110g101g111g", "101"}, {"10gGg01G", "01"},     {"1010g", std::nullopt},
      {"ggG", std::nullopt},     {"g0101", std::nullopt},  {"0101", std::nullopt}, {"", std::nullopt},
  };
  for (const auto& [symbols, frame] : cases) EXPECT_EQ(IsolateFrame(symbols), frame) << symbols;
}

TEST(DecodeCode, ReadsEachLineCode) {
  struct Case {
    std::string Frame;
    std::int16_t Kind;
    std::string Code;
  };
  const std::vector<Case> cases = {
      {"1010001001", kNec, "011"},
      {"0101", kNec, "00"},
      {"1100", kNec, "1"},  // two marks in a row hold no space between them
      {"", kNec, ""},
      {"1000", kCustom, "1"},
      {"01011010", kSony, "010"},
      {"111", kSony, "1"},
      {"000", kSony, ""},
      // 11 0 00000 000001 and the same with a closing 0, whose last half bit ran into the gap
      {"101101010101010101010101001", kRc5, "11000000000001"},
      {"10110101010101010101010101", kRc5, "11000000000000"},
      {"11", kRc5, "10"},
      {"1100", kRc5, ""},  // 011000: the last pair is no bit
      {"1111", kRc5, ""},
      {"011", kRc5, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(DecodeCode(c.Frame, c.Kind), c.Code) << c.Frame << " kind " << c.Kind;
}

TEST(DecodeCode, ForgetsTheToggleDigit) {
  std::string halves;
  for (const char digit : std::string("11101010101010")) halves += digit == '1' ? "01" : "10";
  EXPECT_EQ(DecodeCode(halves.substr(1), kRc5), "11001010101010");
}

}  // namespace
}  // namespace keplo
