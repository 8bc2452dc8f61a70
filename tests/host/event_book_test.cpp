#include "host_program/event_book.h"

#include <gtest/gtest.h>

#include "doubles/temp_folder.h"
#include "failure.h"
#include "host_program/event_command_line.h"

namespace keplo::host {

namespace {

using nlohmann::json;

const json kLamp = json::array({{{"kind", "run"}, {"program", "lamp"}}});

TEST(EventBook, NeverGivesAnIdentifierTwice) {
  const tests::TempFolder folder;
  const auto file = folder.Path() / "new" / "host.json";
  EXPECT_EQ(EventBook(file).NewEventID({}), "1");
  EXPECT_EQ(EventBook(file).NewEventID({"1"}), "2");
  EXPECT_EQ(EventBook(file).NewEventID({"lamp", "-5", "40", "99x", "9223372036854775807"}), "41");
  EventBook(file).SetActions("50", json::array());
  EXPECT_EQ(EventBook(file).NewEventID({}), "51");
  EventBook book(file);
  book.Forget("50");
  folder.Write("new/host.json", R"({"version": 1, "next_event_id": 9223372036854775807, "events": {}})");
  EXPECT_EQ(book.NewEventID({"51"}), "52");
  std::filesystem::remove(file);
  EXPECT_EQ(book.NewEventID({}), "53");
  EventBook(file).Forget("60");  // which another program had given
  EXPECT_EQ(EventBook(file).NewEventID({}), "61");
}

TEST(EventBook, KeepsUnknownFieldsAndChangesOfOthers) {
  const tests::TempFolder folder;
  const auto file = folder.Path() / "host.json";
  folder.Write("own.json",
               R"({"version": 1, "note": "mine", "events": {"7": {"colour": "red", "actions": 5}}})");
  std::filesystem::create_symlink("own.json", file);
  EventBook book(file);
  EXPECT_EQ(book.ActionsOf("7"), json::array());
  EventBook(file).SetActions("7", kLamp);
  book.ReadIfChanged();
  EXPECT_EQ(book.ActionsOf("7"), kLamp);
  EventBook(file).SetActions("6", kLamp);
  EXPECT_EQ(book.NewEventID({}), "8");
  const json kept = json::parse(folder.Read("own.json"));
  EXPECT_EQ(kept["note"], "mine");
  EXPECT_EQ(kept["events"]["7"], (json{{"colour", "red"}, {"actions", kLamp}}));
  EXPECT_EQ(kept["events"]["6"]["actions"], kLamp);
  EXPECT_TRUE(std::filesystem::is_symlink(file));

  folder.Write("own.json", "{");
  EXPECT_THROW(book.ReadIfChanged(), Failure);
  EXPECT_THROW(book.Forget("7"), Failure);
  EXPECT_EQ(folder.Read("own.json"), "{");
  EXPECT_EQ(book.ActionsOf("7"), kLamp);
}

TEST(EventCommandLine, IsParsedAsShown) {
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
        R"([{"kind": 5, "program": "a"}])", R"(["lamp on"])"}) {
    const json actions = json::parse(text);
    EXPECT_FALSE(CommandLineOf(actions)) << text;
    EXPECT_EQ(WithCommandLine(actions, "fan").dump(), R"([{"arguments":[],"kind":"run","program":"fan"}])");
  }
}

}  // namespace

}  // namespace keplo::host
