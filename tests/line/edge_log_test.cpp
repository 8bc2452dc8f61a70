#include "line/serial/edge_log.h"

#include <gtest/gtest.h>

#include "line/serial/edge_press.h"

namespace keplo {
namespace {

using std::chrono::milliseconds;

TEST(EdgeLog, KeepsTheOldestEdgesWhenItIsFull) {
  KernelCalls calls;
  EdgeLog log(calls);
  for (int i = 0; i < 3 * static_cast<int>(EdgeLog::kMostEdges); ++i)
    log.Add({milliseconds(i), i % 2 == 0}, 0);
  ASSERT_EQ(log.Edges().size(), EdgeLog::kMostEdges);
  EXPECT_EQ(log.Edges().back().At, milliseconds(EdgeLog::kMostEdges - 1));
  EXPECT_EQ(log.Missed(), 2 * EdgeLog::kMostEdges);
  log.Drop(10);
  log.Add({milliseconds(99'999), true}, 1);
  EXPECT_EQ(log.Edges().front().At, milliseconds(10));
  EXPECT_EQ(log.Edges().back().At, milliseconds(99'999));
  EXPECT_EQ(log.Missed(), 2 * EdgeLog::kMostEdges + 1);
}

TEST(EdgeLog, BeginsASignalAtAFrameWhereItsBeginningWasNotHeard) {
  const std::vector<Edge> edges = {
      {milliseconds(101), false}, {milliseconds(102), true}, {milliseconds(110), false}};
  EXPECT_EQ(FindBeginning(edges, true, std::nullopt), 0U);
  EXPECT_EQ(FindBeginning(edges, true, milliseconds(100)), 2U) << "the space ahead of the first is too short";
  EXPECT_EQ(FindBeginning(edges, true, milliseconds(90)), 0U);
}

TEST(EdgeLog, ReadsAPressAcrossEdgesThatWereMissed) {
  const auto edge = [](int at, bool level) { return Edge{milliseconds(at), level}; };
  const std::vector<Edge> edges = {edge(1, true),  edge(10, false), edge(14, true),
                                   edge(15, true), edge(20, false), edge(40, true)};
  const EdgePress press = ReadPress(edges, 1, true, milliseconds(40));
  EXPECT_EQ(press.Train, (PulseTrain{4000, 6000, 20'000}));
  EXPECT_EQ(press.Edges, 5U);
  EXPECT_FALSE(press.AllLight);
  const EdgePress lit = ReadPress(edges, 4, true, milliseconds(30));
  EXPECT_EQ(lit.Train, PulseTrain{10'000});
  EXPECT_TRUE(lit.AllLight);
}

}  // namespace
}  // namespace keplo
