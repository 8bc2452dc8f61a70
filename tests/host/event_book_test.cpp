#include "host/program/event_book.h"

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

TEST(EventBook, TellsThatItCannotBeWrittenAndLeavesNothingBehind) {
  const tests::TempFolder folder;
  const auto inTheWay = folder.Path() / "host.json";
  EventBook book(inTheWay);
  std::filesystem::create_directories(inTheWay / "full");
  try {
    book.NewEventID({});
    FAIL() << "a folder was overwritten";
  } catch (const Failure& failure) {
    EXPECT_NE(std::string(failure.what()).find(inTheWay.string() + " cannot be written: "),
              std::string::npos);
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

}  // namespace

}  // namespace keplo::host
