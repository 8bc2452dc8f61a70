#include "signal/timing.h"

#include <gtest/gtest.h>

namespace keplo {
namespace {

/// Interleaves marks and spaces, each with a count, into runs.
std::vector<int> Interleave(std::vector<std::pair<int, int>> marks, std::vector<std::pair<int, int>> spaces) {
  std::vector<int> runs;
  const auto take = [](std::vector<std::pair<int, int>>& lengths) {
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

struct Case {
  std::string Name;
  std::vector<int> Runs;
  bool Measured;
  int BaseT, ProtoKind;
};

TEST(AnalyseTiming, MeasuresBaseTimeAndLineCode) {
  const std::vector<Case> cases = {
      {"pulse distance",
       Interleave({{9, 10}, {15, 11}, {1, 160}}, {{6, 10}, {6, 11}, {7, 30}, {5, 31}, {1, 80}}), true, 10,
       kNec},
      {"pulse distance by double spaces", Interleave({{12, 10}, {8, 11}}, {{8, 10}, {4, 11}, {8, 21}}), true,
       10, kNec},
      {"pulse width", Interleave({{3, 10}, {5, 11}, {2, 20}, {2, 21}, {1, 40}}, {{7, 10}, {5, 11}, {1, 400}}),
       true, 10, kSony},
      {"biphase",
       Interleave({{3, 16}, {3, 17}, {1, 32}, {3, 33}}, {{4, 16}, {2, 17}, {1, 32}, {2, 33}, {1, 400}}), true,
       16, kRc5},
      {"nothing near two or three times the base", Interleave({{10, 10}}, {{10, 11}}), true, 9, kUnknown},
      {"runs of one length peak one lower", Interleave({{10, 10}}, {{10, 10}}), true, 9, kUnknown},
      {"first of two equal peaks wins", Interleave({{6, 10}, {6, 50}}, {{6, 10}, {6, 50}}), true, 9,
       kUnknown},
      {"peaks five apart", Interleave({{5, 16}, {5, 30}}, {{10, 11}}), true, 12, kSony},
      {"peaks six apart", Interleave({{10, 17}}, {{10, 11}}), false, 0, kNec},
      {"more long spaces than short ones", Interleave({{20, 10}}, {{8, 10}, {12, 30}}), false, 0, kNec},
      {"capped runs look like triple spaces of a base of 33", Interleave({{10, 34}}, {{9, 34}, {1, 150}}),
       true, 33, kNec},
      {"base times above 50 fit no line code", Interleave({{10, 60}}, {{9, 60}, {1, 120}}), true, 59,
       kUnknown},
      {"base times above 90 are not measured", Interleave({{10, 95}}, {{10, 95}}), false, 0, kNec},
      {"glitches of two samples reach no window", Interleave({{10, 2}}, {{10, 2}}), false, 0, kNec},
      {"double spaces one below the window", Interleave({{12, 11}}, {{8, 11}, {4, 18}}), true, 10, kUnknown},
      {"double spaces at its lower edge", Interleave({{12, 11}}, {{8, 11}, {4, 19}}), true, 10, kNec},
      {"double spaces at its upper edge", Interleave({{12, 11}}, {{8, 11}, {4, 22}}), true, 10, kNec},
      {"double spaces one above the window", Interleave({{12, 11}}, {{8, 11}, {4, 23}}), true, 10, kUnknown},
      {"double marks at the upper edge", Interleave({{8, 11}, {4, 22}}, {{12, 11}}), true, 10, kSony},
      {"double marks one above it", Interleave({{8, 11}, {4, 23}}, {{12, 11}}), true, 10, kUnknown},
      {"triple spaces at the lower edge", Interleave({{12, 11}}, {{8, 11}, {4, 29}}), true, 10, kNec},
      {"triple spaces one above the window", Interleave({{12, 11}}, {{8, 11}, {4, 33}}), true, 10, kUnknown},
      {"peak of marks five below", Interleave({{12, 11}}, {{12, 16}}), true, 12, kUnknown},
      {"peak of marks six below", Interleave({{12, 11}}, {{12, 17}}), false, 0, kNec},
      {"capped marks look double at a base of 50", Interleave({{8, 51}, {3, 120}}, {{11, 51}}), true, 50,
       kSony},
      {"capped spaces look double at a base of 49", Interleave({{11, 50}}, {{8, 50}, {3, 120}}), true, 49,
       kNec},
      {"shortest runs in a window", Interleave({{10, 3}}, {{10, 3}}), true, 4, kUnknown},
      {"longest runs in a window", Interleave({{10, 91}}, {{10, 91}}), true, 90, kUnknown},
      {"runs one too long for any window", Interleave({{10, 92}}, {{10, 92}}), false, 0, kNec},
      {"one endless mark", {5000}, false, 0, kNec},
      {"nothing", {}, false, 0, kNec},
  };
  for (const Case& c : cases) {
    Timing timing;
    EXPECT_EQ(AnalyseTiming(c.Runs, timing), c.Measured) << c.Name;
    EXPECT_EQ(timing.BaseT, c.BaseT) << c.Name;
    EXPECT_EQ(timing.ProtoKind, c.ProtoKind) << c.Name;
  }
}

TEST(AnalyseTiming, KeepsTheLastResultButNotItsHistograms) {
  Timing timing;
  timing.BaseT = 12;
  timing.ProtoKind = kRc5;
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
