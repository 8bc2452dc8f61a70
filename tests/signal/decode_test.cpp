#include "signal/decode.h"

#include <gtest/gtest.h>

#include "signal/decode_frames.h"
#include "signal/first_analysis.h"

namespace keplo {
namespace {

TEST(WalkFirstFrame, TakesTheFirstStretchBetweenTwoBorders) {
  const std::vector<std::pair<std::vector<int>, std::string>> cases = {
      {{45, 45, 7, 18, 7, 7, 18, 200}, "1001011"},
      {{45, 30, 30, 1}, "000111"},  // the last space closes, however short it is
      {{10, 20, 10, 45, 7, 18, 45, 7, 7, 39}, "100"},
      {{0, 45, 10, 38, 10, 39}, "10001"},
      {{45, 14, 15, 25, 26, 39},
       "011001"
       "11"},
      {{10, 20, 10, 5}, "none"},
      {{45, 45, 45, 45}, "none"},
      {{0, 4080}, "none"},
  };
  for (const auto& [runs, symbols] : cases) {
    std::string frame = "of the last capture";
    const bool found = WalkFirstFrame(runs, 10, frame);
    EXPECT_EQ(found ? frame : "none", symbols) << testing::PrintToString(runs);
  }
}

struct Case {
  std::string Symbols;
  std::int16_t Kind;
  std::string Decoded;
};

TEST(DecodeCode, ReadsEachLineCode) {
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
      {"101010101010101", kRc5, "11011111"},  // the toggle digit is none of the code
      {"11", kRc5, "10"},
      {"1100", kRc5, ""},  // 011000: the last pair is no bit
      {"1111", kRc5, ""},
      {"011", kRc5, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(DecodeCode(c.Symbols, c.Kind), c.Decoded) << c.Symbols << " kind " << c.Kind;
  }
}

TEST(DecodeFrames, ReadsEachLineCodeAndKeepsTheBordersOfFrames) {
  const std::vector<Case> cases = {
      {"", kNec, "G"},
      {"Gg", kNec, "GGG"},
      {"Gg100100010101g", kNec, "GGG1100G"},
      {"Gg1000101gGg1g", kNec, "GGG10GGGG"},  // a short repeat: leader and one mark
      {"Gg110", kNec, "GGG0"},
      {"G0g10", kNec, "GGG00"},  // a short space before a mark puts its digit after the marks
      {"GgGgGg1000", kNec, "GGGGGGG"},
      {"GgGgG10001GgGgG10", kNec, "GGGGGG1GGGGG0"},  // five side by side end nothing
      {"Gg1000", kCustom, "GGG1"},
      {"?10?", kNec, "G0"},
      {"", kSony, ""},
      {"G", kSony, "G"},
      {"0110", kSony, "1"},
      {"010", kSony, "0"},
      {"00", kSony, ""},
      {"G01101g", kSony, "G10G"},
      {"G01101gG01101g", kSony, "G10GG10G"},
      {"Gg11GgGg11g01", kSony, "GG1GGGG1"},  // the pass of the sixth mark is read to its end
      {"?10?", kSony, "0"},
      {"g110011g110", kRc5, "G1010G10"},
      {"g101g101", kRc5, "G11G11"},
      {"G101G101", kRc5, "G11G11"},
      {"g1110", kRc5, "G1y"},
      {"g100110", kRc5, "G1xy"},
      {"g1", kRc5, "G1"},
      {"?10?", kRc5, "G1"},
  };
  for (const Case& c : cases) {
    std::string decoded = "of the last recording";
    DecodeFrames(c.Symbols, c.Kind, decoded);
    EXPECT_EQ(decoded, c.Decoded) << c.Symbols << " kind " << c.Kind;
  }
}

TEST(CutFrames, TakesTheFirstTwo) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"GGG101GG101GG0", "101 101 ended, double mark"},
      {"GGG101G01", "101 01 ended"},
      {"GGG101GGG", "101  ended, double mark"},
      {"GGG101", "101 "},
      {"101G1", "101 1 ended"},
      {"GGG", " "},
      {"", " "},
  };
  for (const auto& [decoded, cut] : cases) {
    const FramePair frames = CutFrames(decoded);
    const std::string ended = frames.FirstEnded ? " ended" : "";
    const std::string mark = frames.DoubleMarkAfter ? ", double mark" : "";
    EXPECT_EQ(std::string(frames.First) + " " + std::string(frames.Second) + ended + mark, cut) << decoded;
  }
}

}  // namespace
}  // namespace keplo
