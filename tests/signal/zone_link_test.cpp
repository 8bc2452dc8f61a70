#include "signal/zone_link.h"

#include <gtest/gtest.h>

#include "doubles/fake_line.h"

namespace keplo {
namespace {

using tests::FakeLine;

/// What is asked of the line in n tries, the answers to which say whether they are looked at.
std::vector<std::string> Calls(const std::string& sent, const std::vector<std::string>& answers) {
  std::vector<std::string> calls = {"SetMode 2"};
  for (const std::string& answer : answers) {
    calls.insert(calls.end(), {"SendChr " + sent, "ReadChr"});
    if (!answer.empty()) calls.push_back("CheckZone " + answer);
  }
  calls.push_back("SetMode 1");
  return calls;
}

TEST(QueryZone, TakesTheFirstValidAnswerOfFour) {
  struct Case {
    std::string Name;
    std::deque<char> Answers;
    std::deque<std::int16_t> Zones;
    std::int32_t ReadResult;
    int Zone;
    std::vector<std::string> Asked;
  };
  const std::vector<Case> cases = {
      {"at once", {'\x19'}, {2}, 1, 2, {"25"}},
      {"no answer", {}, {}, 1, kNoZone, {"", "", "", ""}},
      {"no zone, then one", {'a', 'b', 'c', 'd'}, {0, -3, 0, 2}, 1, 2, {"97", "98", "99", "100"}},
      {"nothing in the low 16 bits", {'a', 'b', 'c', 'd'}, {}, 0x10000, kNoZone, {"", "", "", ""}},
  };
  for (const Case& c : cases) {
    FakeLine line;
    line.Answers.assign(c.Answers.begin(), c.Answers.end());
    line.ReadResult = c.ReadResult;
    std::deque<std::int16_t> zones = c.Zones;
    line.Zones = [&](char) {
      const std::int16_t zone = zones.front();
      zones.pop_front();
      return zone;
    };
    EXPECT_EQ(QueryZone(line), c.Zone) << c.Name;
    EXPECT_EQ(line.Calls, Calls("80", c.Asked)) << c.Name;
  }
}

TEST(SendZone, AcceptsTheCommandWithoutItsHighestBitOnly) {
  FakeLine line;
  line.Answers = {72, '\0', 8};  // an echo and a time-out, then the answer
  EXPECT_TRUE(SendZone(line, 1));
  EXPECT_EQ(line.Calls, Calls("72", {"", "", ""}));
  FakeLine wrong;
  wrong.Answers = {1, 2, 3, 4, 63};
  EXPECT_FALSE(SendZone(wrong, 8));
  EXPECT_EQ(wrong.Calls, Calls("127", {"", "", "", ""}));
  for (const auto zone : std::initializer_list<std::int16_t>{-1, 0, 9}) {
    FakeLine none;
    EXPECT_FALSE(SendZone(none, zone));
    EXPECT_EQ(none.Calls, Calls("", {})) << zone;
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
