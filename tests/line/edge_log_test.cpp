#include "line/serial/edge_log.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace keplo
