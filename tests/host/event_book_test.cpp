#include "host_program/event_book.h"

#include <gtest/gtest.h>

#include "doubles/temp_folder.h"
#include "failure.h"

namespace keplo::host {

namespace {

using nlohmann::json;

TEST(EventBook, NeverGivesAnIdentifierTwice) {
  const tests::TempFolder folder;
  const auto file = folder.Path() / "new" / "host.json";
  EXPECT_EQ(EventBook(file).NewEventID({}), "1");
  EXPECT_EQ(EventBook(file).NewEventID({"1"}), "2");
  EXPECT_EQ(EventBook(file).NewEventID({"lamp", "-5", "40", "99x"}), "41");
  EventBook(file).SetActions("50", json::array());
  EXPECT_EQ(EventBook(file).NewEventID({}), "51");
  EventBook(file).Forget("50");
  EXPECT_EQ(EventBook(file).NewEventID({}), "52");
}

TEST(EventBook, KeepsWhatItDoesNotUnderstand) {
  const tests::TempFolder folder;
  folder.Write("host.json",
               R"({"version": 1, "note": "mine", "events": {"7": {"colour": "red", "actions": 5}}})");
  EventBook book(folder.Path() / "host.json");
  EXPECT_EQ(book.ActionsOf("7"), json::array());
  const json actions = json::array({{{"kind", "run"}, {"program", "lamp"}}});
  book.SetActions("7", actions);
  EXPECT_EQ(EventBook(folder.Path() / "host.json").ActionsOf("7"), actions);
  const json kept = json::parse(folder.Read("host.json"));
  EXPECT_EQ(kept["note"], "mine");
  EXPECT_EQ(kept["events"]["7"]["colour"], "red");
}

TEST(EventBook, KeepsWhatOthersChangeInTheMeantime) {
  const tests::TempFolder folder;
  const auto file = folder.Path() / "host.json";
  const json lamp = json::array({{{"kind", "run"}, {"program", "lamp"}}});
  EventBook book(file);
  EXPECT_EQ(book.NewEventID({}), "1");
  EventBook(file).SetActions("1", lamp);
  book.ReadIfChanged();
  EXPECT_EQ(book.ActionsOf("1"), lamp);

  EventBook(file).SetActions("6", lamp);
  EXPECT_EQ(book.NewEventID({}), "7");
  EXPECT_EQ(EventBook(file).ActionsOf("6"), lamp);

  folder.Write("host.json", "{");
  EXPECT_THROW(book.ReadIfChanged(), Failure);
  EXPECT_THROW(book.Forget("1"), Failure);
  EXPECT_EQ(folder.Read("host.json"), "{");
  EXPECT_EQ(book.ActionsOf("1"), lamp);
  std::filesystem::remove(file);
  EXPECT_EQ(book.NewEventID({}), "8");
}

TEST(EventBook, TellsThatItCannotBeWrittenAndLeavesNothingBehind) {
  const tests::TempFolder folder;
  const auto file = folder.Path() / std::string(255, 'b');  // no room for the temporary file's longer name
  EventBook book(file);
  try {
    book.SetActions("7", json::array({5}));
    FAIL() << "the file was written";
  } catch (const Failure& failure) {
    EXPECT_NE(std::string(failure.what()).find(file.string() + " cannot be written: "), std::string::npos);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
  EXPECT_EQ(book.ActionsOf("7"), json::array());
}

}  // namespace

}  // namespace keplo::host
