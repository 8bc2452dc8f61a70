#include "signal/first_analysis.h"

#include <gtest/gtest.h>

namespace keplo {
namespace {

/// How many runs there are of which length, in their order.
using Runs = std::vector<std::pair<int, int>>;

/// Marks and spaces in turn.
std::vector<int> Interleave(Runs marks, Runs spaces) {
  std::vector<int> runs;
  const auto take = [](Runs& lengths) {
    const int length = lengths.front().second;
    if (--lengths.front().first == 0) lengths.erase(lengths.begin());
    return length;
  };
  while (!marks.empty() && !spaces.empty()) {
    runs.push_back(take(marks));
    runs.push_back(take(spaces));
  }
  return runs;
}

TEST(AnalyseTiming, MeasuresBaseTimeAndLineCode) {
  struct Case {
    std::string Name;
    Runs Marks, Spaces;
    int BaseT, ProtoKind;  // 0 and kNec, as they were, if nothing is measured
  };
  const std::vector<Case> cases = {
      {"NEC", {{9, 10}, {15, 11}, {1, 160}}, {{6, 10}, {6, 11}, {7, 30}, {5, 31}, {1, 80}}, 10, kNec},
      {"NEC by double spaces", {{12, 10}, {8, 11}}, {{8, 10}, {4, 11}, {8, 21}}, 10, kNec},
      {"SONY", {{3, 10}, {5, 11}, {2, 20}, {2, 21}, {1, 40}}, {{7, 10}, {5, 11}, {1, 400}}, 10, kSony},
      {"RC5", {{3, 16}, {3, 17}, {1, 32}, {3, 33}}, {{4, 16}, {2, 17}, {1, 32}, {2, 33}, {1, 400}}, 16, kRc5},
      {"no multiples", {{10, 10}}, {{10, 11}}, 9, kUnknown},
      {"one length peaks one lower", {{10, 10}}, {{10, 10}}, 9, kUnknown},
      {"first of two peaks", {{6, 10}, {6, 50}}, {{6, 10}, {6, 50}}, 9, kUnknown},
      {"peaks five apart", {{5, 16}, {5, 30}}, {{10, 11}}, 12, kSony},
      {"peaks six apart", {{10, 17}}, {{10, 11}}, 0, kNec},
      {"more long spaces than short", {{20, 10}}, {{8, 10}, {12, 30}}, 0, kNec},
      {"capped runs look triple", {{10, 34}}, {{9, 34}, {1, 150}}, 33, kNec},
      {"too long for a line code", {{10, 60}}, {{9, 60}, {1, 120}}, 59, kUnknown},
      {"too long", {{10, 95}}, {{10, 95}}, 0, kNec},
      {"glitches", {{10, 2}}, {{10, 2}}, 0, kNec},
      {"double spaces, one below", {{12, 11}}, {{8, 11}, {4, 18}}, 10, kUnknown},
      {"double spaces, lower edge", {{12, 11}}, {{8, 11}, {4, 19}}, 10, kNec},
      {"double spaces, upper edge", {{12, 11}}, {{8, 11}, {4, 22}}, 10, kNec},
      {"double spaces, one above", {{12, 11}}, {{8, 11}, {4, 23}}, 10, kUnknown},
      {"double marks, upper edge", {{8, 11}, {4, 22}}, {{12, 11}}, 10, kSony},
      {"double marks, one above", {{8, 11}, {4, 23}}, {{12, 11}}, 10, kUnknown},
      {"triple spaces, lower edge", {{12, 11}}, {{8, 11}, {4, 29}}, 10, kNec},
      {"triple spaces, one above", {{12, 11}}, {{8, 11}, {4, 33}}, 10, kUnknown},
      {"marks five below", {{12, 11}}, {{12, 16}}, 12, kUnknown},
      {"marks six below", {{12, 11}}, {{12, 17}}, 0, kNec},
      {"capped marks look double", {{8, 51}, {3, 120}}, {{11, 51}}, 50, kSony},
      {"capped spaces look double", {{11, 50}}, {{8, 50}, {3, 120}}, 49, kNec},
      {"shortest runs in a window", {{10, 3}}, {{10, 3}}, 4, kUnknown},
      {"longest runs in a window", {{10, 91}}, {{10, 91}}, 90, kUnknown},
      {"one too long for any window", {{10, 92}}, {{10, 92}}, 0, kNec},
  };
  for (const Case& c : cases) {
    Timing timing;
    EXPECT_EQ(AnalyseTiming(Interleave(c.Marks, c.Spaces), timing), c.BaseT > 0) << c.Name;
    EXPECT_EQ(timing.BaseT, c.BaseT) << c.Name;
    EXPECT_EQ(timing.ProtoKind, c.ProtoKind) << c.Name;
  }
}

TEST(AnalyseTiming, KeepsTheLastResultButNotItsHistograms) {
  Timing timing;
  timing.BaseT = 12;
  timing.ProtoKind = kRc5;
  EXPECT_FALSE(AnalyseTiming({}, timing));
  EXPECT_FALSE(AnalyseTiming(std::vector<int>{5000}, timing));
  EXPECT_FALSE(AnalyseTiming(std::vector<int>{0, 4}, timing));
  EXPECT_EQ(timing.BaseT, 12);
  EXPECT_EQ(timing.ProtoKind, kRc5);
  EXPECT_EQ(timing.RunHist0[4], 1);
  EXPECT_EQ(timing.RunHist1[0], 2) << "after the last space stands a mark of nothing";
}

TEST(AnalyseTiming, LooksAt25PairsUpToASilenceOfOver300Samples) {
  for (const auto& [silence, counted] : {std::pair{300, 1}, std::pair{301, 0}}) {
    Timing timing;
    AnalyseTiming(std::vector<int>{10, silence, 20, 20}, timing);
    EXPECT_EQ(timing.RunHist0[99], counted) << silence;
    EXPECT_EQ(timing.RunHist1[20], counted) << silence;
  }
  std::vector<int> runs = Interleave({{25, 10}}, {{25, 11}});
  runs.insert(runs.end(), {20, 22, 20, 22});
  Timing timing;
  EXPECT_TRUE(AnalyseTiming(runs, timing));
  EXPECT_EQ(timing.RunHist1[10], 25);
  EXPECT_EQ(timing.RunHist1[20] + timing.RunHist0[22], 0);
}

TEST(RunUnits, TurnsAtItsLimits) {
  for (const auto& [run, units] :
       {std::pair{0, 1}, {14, 1}, {15, 2}, {25, 2}, {26, 3}, {38, 3}, {39, 9}, {4080, 9}}) {
    EXPECT_EQ(RunUnits(run, 10), units) << run;
  }
}

}  // namespace
}  // namespace keplo
