#include "signal/zone_link.h"

#include <gtest/gtest.h>

#include "doubles/fake_line.h"

namespace keplo {
namespace {

using tests::FakeLine;
using Calls = std::vector<std::string>;

TEST(QueryZone, TakesTheFirstValidAnswer) {
  FakeLine line;
  line.Answers = {'\x19'};
  line.Zones = [](char) -> std::int16_t { return 2; };
  EXPECT_EQ(QueryZone(line), 2);
  EXPECT_EQ(line.Calls, (Calls{"SetMode 2", "SendChr 80", "ReadChr", "CheckZone 25", "SetMode 1"}));
}

TEST(QueryZone, GivesUpBehindFourUnansweredQueries) {
  FakeLine line;
  EXPECT_EQ(QueryZone(line), kNoZone);
  EXPECT_EQ(line.Calls, (Calls{"SetMode 2", "SendChr 80", "ReadChr", "SendChr 80", "ReadChr", "SendChr 80",
                               "ReadChr", "SendChr 80", "ReadChr", "SetMode 1"}));
}

TEST(QueryZone, AsksAgainBehindAnAnswerThatIsNoZone) {
  FakeLine line;
  line.Answers = {'a', 'b', 'c', 'd'};
  std::deque<std::int16_t> zones = {0, -3, 0, 2};
  line.Zones = [&](char) {
    const std::int16_t zone = zones.front();
    zones.pop_front();
    return zone;
  };
  EXPECT_EQ(QueryZone(line), 2);
  EXPECT_EQ(line.Calls.back(), "SetMode 1");
}

TEST(QueryZone, LooksAtTheLow16BitsOfARead) {
  FakeLine line;
  line.Answers = {'a', 'b', 'c', 'd'};
  line.ReadResult = 0x10000;
  EXPECT_EQ(QueryZone(line), kNoZone);
  EXPECT_EQ(std::count(line.Calls.begin(), line.Calls.end(), "CheckZone 97"), 0);
}

TEST(SendZone, AcceptsTheCommandWithoutItsHighestBitOnly) {
  FakeLine line;
  line.Answers = {72, '\0', 8};  // an echo and a time-out, then the answer
  EXPECT_TRUE(SendZone(line, 1));
  EXPECT_EQ(line.Calls, (Calls{"SetMode 2", "SendChr 72", "ReadChr", "SendChr 72", "ReadChr", "SendChr 72",
                               "ReadChr", "SetMode 1"}));
}

TEST(SendZone, FailsBehindFourWrongAnswers) {
  FakeLine line;
  line.Answers = {1, 2, 3, 4, 63};
  EXPECT_FALSE(SendZone(line, 8));
  EXPECT_EQ(line.Answers.size(), 1U);
  EXPECT_EQ(line.Calls.back(), "SetMode 1");
}

TEST(SendZone, SendsNothingForAZoneThatDoesNotExist) {
  for (const std::int16_t zone : {-1, 0, 9}) {
    FakeLine line;
    EXPECT_FALSE(SendZone(line, zone));
    EXPECT_EQ(line.Calls, (Calls{"SetMode 2", "SetMode 1"})) << zone;
  }
}

TEST(ExpandGenericBits, FormsTheCommandByte) {
  const std::vector<int> commands = {72, 89, 90, 107, 92, 109, 110, 127};
  for (std::int16_t zone = 1; zone <= 8; ++zone) {
    EXPECT_EQ(ExpandGenericBits(zone, "11"), commands[static_cast<std::size_t>(zone - 1)]) << zone;
  }
  EXPECT_EQ(ExpandGenericBits(3, "01"), 26);
  EXPECT_EQ(ExpandGenericBits(3, "00"), 18);
}

}  // namespace
}  // namespace keplo
