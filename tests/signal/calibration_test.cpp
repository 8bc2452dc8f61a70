#include "signal/calibration.h"

#include <gtest/gtest.h>

namespace keplo::tests {
namespace {

using Step = CalibrationStep;

struct Story {
  std::vector<std::pair<int, int>> Heard;  // how often which base time; 0 could not be measured
  Step Next;                               // after the last of them
  int Delay;
};

const std::vector<Story> kStories = {
    {{{1, 13}, {10, 12}, {10, 11}, {14, 10}, {1, 9}}, Step::Succeeded, 28},
    {{{21, 11}, {1, 10}, {1, 9}}, Step::Succeeded, 21},
    {{{1, 11}, {69, 10}, {1, 9}}, Step::Succeeded, 35},
    {{{1, 11}, {70, 10}, {5, 0}}, Step::Measure, 71},
    {{{1, 11}, {70, 10}, {1, 9}}, Step::Failed, 71},
    {{{1, 0}, {1, 9}}, Step::TooSlow, 0},
    {{{1, 10}, {40, 9}}, Step::Measure, 1},
    {{{5, 10}, {1, 9}}, Step::Succeeded, 3},
    {{{6, 11}, {90, 9}, {2, 10}, {1, 9}}, Step::Succeeded, 7},
    {{{3, 11}, {69, 8}}, Step::Failed, 71},
    {{{3, 11}, {2, 10}, {2, 11}, {2, 10}, {1, 9}}, Step::Succeeded, 6},
    {{{3, 11}, {500, 0}, {4, 10}, {9, 0}, {1, 9}}, Step::Succeeded, 5},
};

TEST(CalibrationSearch, TakesTheMiddleOfTheStretchOfTen) {
  for (const Story& story : kStories) {
    SCOPED_TRACE(testing::PrintToString(story.Heard));
    CalibrationSearch search;
    Step next = Step::Measure;
    for (const auto& [count, baseT] : story.Heard) {
      for (int i = 0; i < count; ++i) {
        ASSERT_EQ(next, Step::Measure) << "ended early";
        next = search.Take(baseT == 0 ? std::nullopt : std::optional<std::int16_t>(baseT));
      }
    }
    EXPECT_EQ(next, story.Next);
    EXPECT_EQ(search.Delay(), story.Delay);
  }
}

}  // namespace
}  // namespace keplo::tests
