#include "signal/decode_frames.h"

#include <gtest/gtest.h>

#include "signal/timing.h"

namespace keplo {
namespace {

TEST(DecodeFrames, ReadsEachLineCodeAndKeepsTheBordersOfFrames) {
  struct Case {
    std::string Symbols;
    std::int16_t Kind;
    std::string Decoded;
  };
  const std::vector<Case> cases = {
      {"", kNec, "G"},
      {"Gg", kNec, "GGG"},
      {"Gg100100010101g", kNec, "GGG1100G"},
      {"Gg1000101gGg1g", kNec, "GGG10GGGG"},  // a short repeat: leader and one mark
      {"Gg110", kNec, "GGG0"},
      {"G0g10", kNec, "GGG00"},  // a short space ahead of a mark puts its digit behind the marks
      {"GgGgGg1000", kNec, "GGGGGGG"},
      {"GgGgG10001GgGgG10", kNec, "GGGGGG1GGGGG0"},  // five side by side end nothing
      {"Gg1000", kCustom, "GGG1"},
      {"", kSony, ""},
      {"G", kSony, "G"},
      {"0110", kSony, "1"},
      {"010", kSony, "0"},
      {"00", kSony, ""},
      {"G01101g", kSony, "G10G"},
      {"G01101gG01101g", kSony, "G10GG10G"},
      {"Gg11GgGg11g01", kSony, "GG1GGGG1"},  // the pass of the sixth mark is read to its end
      {"g110011g110", kRc5, "G1010G10"},
      {"g101g101", kRc5, "G11G11"},
      {"G101G101", kRc5, "G11G11"},
      {"g1110", kRc5, "G1y"},
      {"g100110", kRc5, "G1xy"},
      {"g1", kRc5, "G1"},
  };
  for (const Case& c : cases) EXPECT_EQ(DecodeFrames(c.Symbols, c.Kind), c.Decoded) << c.Symbols;
}

TEST(DecodeFrames, LeavesSymbolsOfNoMeaningAlone) {
  for (const std::int16_t kind : {kNec, kSony, kRc5}) {
    const std::string decoded = DecodeFrames("?10?", kind);
    EXPECT_LE(decoded.size(), 4U) << decoded;
  }
}

TEST(CutFrames, TakesTheFirstTwo) {
  struct Case {
    std::string Decoded, First, Second;
    bool FirstEnded, DoubleMarkBehind;
  };
  const std::vector<Case> cases = {
      {"GGG101GG101GG0", "101", "101", true, true},
      {"GGG101G01", "101", "01", true, false},
      {"GGG101G", "101", "", true, false},
      {"GGG101GGG", "101", "", true, true},
      {"GGG101", "101", "", false, false},
      {"101G1", "101", "1", true, false},
      {"GGG", "", "", false, false},
      {"", "", "", false, false},
  };
  for (const Case& c : cases) {
    const FramePair frames = CutFrames(c.Decoded);
    EXPECT_EQ(frames.First, c.First) << c.Decoded;
    EXPECT_EQ(frames.Second, c.Second) << c.Decoded;
    EXPECT_EQ(frames.FirstEnded, c.FirstEnded) << c.Decoded;
    EXPECT_EQ(frames.DoubleMarkBehind, c.DoubleMarkBehind) << c.Decoded;
  }
}

}  // namespace
}  // namespace keplo
