#include "host_program/press_actions.h"

#include <gtest/gtest.h>

#include "doubles/expect.h"
#include "host_program/event_book.h"
#include "host_program/keyboard.h"

namespace keplo::host {

namespace {

using nlohmann::json;

json Book(const std::string& action) {
  return json::parse(R"({"17": {"actions": [{"kind": "run", "program": "a"}, )" + action + "]}}");
}

TEST(PressActions, RefuseUnknownFieldsByTheirPath) {
  const std::pair<std::string, std::string> cases[] = {
      {R"({"on": "press"})", ""},
      {R"({"on": "hold", "after_ms": 60000})", ""},
      {R"({"kind": "key", "key": "KEY_MUTE"})", ""},
      {R"("no object")", ""},
      {R"({"on": "prss"})", R"("on" is "prss"; expected is "press")"},
      {R"({"on": 5})", R"("on" is 5;)"},
      {R"({"on": "press", "after_ms": 5})", R"("after_ms" stands without "on": "hold")"},
      {R"({"on": "hold", "after_ms": -1})", R"("after_ms" is -1; expected is a whole number)"},
      {R"({"on": "hold", "after_ms": "1"})", R"("after_ms" is "1";)"},
      {R"({"kind": "key"})", R"("key" is null; expected is a name of the kernel's)"},
      {R"({"kind": "key", "key": "BTN_LEFT"})", R"("key" is "BTN_LEFT";)"},
      {R"({"kind": "key", "key": "KEY_MUTE", "on": "press"})",
       R"("on" and "after_ms" do not go with "kind": "key")"},
  };
  for (const auto& [action, mistake] : cases) {
    const std::string reported = MistakeInActions(Book(action));
    tests::ExpectPart(reported, mistake.empty() ? "" : "action 2 of event 17: " + mistake);
    EXPECT_EQ(reported.empty(), mistake.empty()) << action << reported;
  }
}

TEST(PressActions, AreDueWhenTheySay) {
  const json actions = json::parse(R"([{"n": "P", "on": "press"}, {"n": "E"}, {"n": "e", "on": "every"},
      {"n": "H", "on": "hold", "after_ms": 900}, {"n": "h", "on": "hold"}, {"n": "R", "on": "release"}])");
  PressActions press;
  RaisedEvent event;
  event.EventID = "17";
  std::string due;
  const auto raise = [&] {
    for (const json& action : press.DueAt(event, actions)) due += action["n"].get<std::string>();
    due += ' ';
  };
  for (int round = 0; round < 2; ++round) {
    press.Begin();
    raise();
    for (const int heldMs : {499, 650, 1100, 1600}) {
      press.Hold(heldMs);
      raise();
    }
    for (const RaisedEvent& raised : press.End()) due += raised.EventID;
    due += PressActions::AtRelease(actions)[0]["n"].get<std::string>() + "; ";
  }
  EXPECT_EQ(due, "PEe Ee Eeh EeH Ee 17R; PEe Ee Eeh EeH Ee 17R; ");
  EXPECT_TRUE(press.End().empty()) << "no event comes twice";
}

TEST(KeysDown, KeepsAKeyDownThatAnotherPlaceHolds) {
  using Codes = std::vector<unsigned>;
  KeysDown keys;
  EXPECT_TRUE(keys.Press(1, 5) && keys.Press(2, 6) && !keys.Press(1, 6) && !keys.Press(1, 6));
  EXPECT_EQ(keys.Release(6), Codes{2});
  EXPECT_EQ(keys.Release(5), Codes{1});
  EXPECT_TRUE(keys.Press(1, 5)) << "it went up";
}

}  // namespace

}  // namespace keplo::host
