#include "host_program/event_command_line.h"

#include <gtest/gtest.h>

namespace keplo::host {

namespace {

using nlohmann::json;

TEST(EventCommandLine, ComesBackAsItWasShown) {
  const json actions = json::parse(
      R"([{"kind": "run", "program": "/opt/my lamp", "note": "mine",
           "arguments": ["a \"b\" c", "\"", "\" x", "tab\there", "line\nend", "plain", "$HOME;*"]}])");
  const auto line = CommandLineOf(actions);
  ASSERT_TRUE(line);
  EXPECT_EQ(WithCommandLine(actions, *line), actions);
  EXPECT_EQ(WithCommandLine(actions, "fan off"),
            json::parse(R"([{"kind": "run", "program": "fan", "arguments": ["off"], "note": "mine"}])"));
  EXPECT_EQ(WithCommandLine(actions, ""), json::array());
}

TEST(EventCommandLine, ShowsNoOtherActions) {
  for (const char* text :
       {R"([{"kind": "shell", "command": "lamp on"}])",
        R"([{"kind": "run", "program": "a"}, {"kind": "run", "program": "b"}])",
        R"([{"kind": "run", "program": "a", "arguments": [""]}])",
        R"([{"kind": "run", "program": "a", "arguments": [5]}])", R"([{"kind": "run", "program": 5}])",
        R"([{"kind": 5, "program": "a"}])", R"(["lamp on"])", "[5]"}) {
    const json actions = json::parse(text);
    EXPECT_FALSE(CommandLineOf(actions)) << text;
    EXPECT_EQ(WithCommandLine(actions, "fan").dump(), R"([{"arguments":[],"kind":"run","program":"fan"}])");
  }
}

}  // namespace

}  // namespace keplo::host
