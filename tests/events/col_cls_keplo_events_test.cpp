#include "events/col_cls_keplo_events.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>

#include "event_map_fixture.h"
#include "events/failure_numbers.h"

namespace keplo::tests {
namespace {

std::string Report(const std::string& operation, int number) {
  return "colclsKeploEvents|colclsKeploEvents." + operation + "|" + std::to_string(number) +
         "|07-Nov-2002 16:31:11|";
}

// As an earlier release made it.
const std::string kKeylessTable =
    "drop table colclsKeploEvents; create table colclsKeploEvents (EventID text, EventName text,"
    " EventDescription text, IRCommand text, Enabled boolean, Zone smallint);";

Texts Row(const ui::ListView& list, int row) {
  Texts texts;
  for (int field = 0; field < ui::ListView::kFields; ++field) texts.push_back(list.Text(row, field));
  return texts;
}

TEST(EventCollection, LoadsTheTableInItsOrder) {
  const EventFolder folder;
  EventMap writer(folder), reader(folder);
  ASSERT_TRUE(writer.Load());
  EXPECT_EQ(writer.Events.count(), 0);
  writer.Events.Add(Event("30"));
  writer.Events.Add(
      std::make_shared<clsKeploEvent>(clsKeploEvent{"12", "Mute", "quiet", "RC5&MUTE", false, 0}));
  writer.Events.Add(Event("b", "Röd knapp 🔴"));
  EXPECT_EQ(writer.List.Count(), 0);  // the host operations keep the rows

  ASSERT_TRUE(reader.Load());
  EXPECT_EQ(reader.Members(), (Texts{"30|Power||NEC&POWER|on|3", "12|Mute|quiet|RC5&MUTE|off|0",
                                     "b|Röd knapp 🔴||NEC&POWER|on|3"}));
  EXPECT_EQ(Row(reader.List, 1), (Texts{"Power", "", "NEC&POWER", "True", "3", "30"}));
  EXPECT_EQ(Row(reader.List, 2), (Texts{"Mute", "quiet", "RC5&MUTE", "False", "0", "12"}));
  EXPECT_EQ(reader.Events.Item("EM-12"), reader.Events.Item(2));
  for (const int index : {0, 4, -1}) EXPECT_EQ(reader.Events.Item(index), nullptr);
  EXPECT_EQ(reader.Events.Item("12"), nullptr);
}

TEST(EventCollection, MovesAChangedEventToTheEndAndKeepsTheCallersObject) {
  const EventFolder folder;
  EventMap map(folder);
  const auto first = Event("1"), replacement = Event("2", "Replaced");
  map.Events.Add(first);
  map.Events.Add(Event("2"));

  first->EventName = "Renamed";  // in place, as the dialog does
  EXPECT_TRUE(map.Events.Update(*map.Events.begin()));
  EXPECT_EQ(map.Events.Item(2), first);
  EXPECT_TRUE(map.Events.Update(replacement));  // a new object, as the context menu does
  EXPECT_EQ(map.Events.Item(2), replacement);
  EXPECT_EQ(map.Events.count(), 2);
  EXPECT_EQ(StoredEvents(folder), (Texts{"1|Renamed||NEC&POWER|on|3", "2|Replaced||NEC&POWER|on|3"}));
}

TEST(EventCollection, ReloadsAndNeverOverwritesChangesOfAnotherProgram) {
  // The table afterwards, and the failure of switching event 1 off meanwhile.
  const std::vector<std::tuple<const char*, Texts, int>> cases = {
      {"update colclsKeploEvents set Zone = 5 where EventID = '1'", {"2|b|||on|0", "1|a|||on|5"}, kRowGone},
      {"delete from colclsKeploEvents where EventID = '1'", {"2|b|||on|0"}, kNoCurrentRow},
      {"insert into colclsKeploEvents values ('3', 'c', '', '', 1, 0)",
       {"2|b|||on|0", "1|a|||off|0", "3|c|||on|0"},
       0},
  };
  // Changes are reloaded between two presses, and when a host initialises the map again.
  for (int run = 0; run < 2 * static_cast<int>(cases.size()); ++run) {
    const auto& [otherDid, table, failure] = cases[static_cast<std::size_t>(run / 2)];
    SCOPED_TRACE(otherDid);
    const EventFolder folder(
        "insert into colclsKeploEvents values ('1', 'a', '', '', 1, 0), ('2', 'b', '', '', 1, 0)");
    EventMap map(folder);
    ASSERT_TRUE(map.Load());
    EXPECT_FALSE(map.Database.ChangedElsewhere());
    EventMap other(folder);
    ASSERT_EQ(other.Database.ExecuteSQLCommand(otherDid), 1);

    EXPECT_EQ(map.Events.Update(std::make_shared<clsKeploEvent>(clsKeploEvent{"1", "a", "", "", false, 0})),
              failure == 0);
    EXPECT_EQ(ShownAll(map.Errors), failure == 0 ? Texts{} : Texts{Report("Save", failure)});
    EXPECT_TRUE(map.Database.ChangedElsewhere());
    EXPECT_FALSE(map.Database.ChangedElsewhere());
    other.Database.ExecuteSQLCommand("begin exclusive");
    EXPECT_FALSE(map.Events.ApplyExternalChanges());
    other.Database.ExecuteSQLCommand("commit");
    EXPECT_TRUE(map.Database.ChangedElsewhere()) << "a read that met a lock comes again";
    EXPECT_TRUE(run % 2 == 0 ? map.Events.ApplyExternalChanges() : map.Load());
    EXPECT_EQ(map.Members(), table);
    const Texts stored = StoredEvents(folder);
    EXPECT_TRUE(std::is_permutation(stored.begin(), stored.end(), table.begin(), table.end()));
    EXPECT_EQ(map.List.Count(), static_cast<int>(table.size()));
    if (failure == kRowGone) {
      EXPECT_EQ(map.List.Text(1, 4), "5") << "the row keeps its place";
    }
  }
}

TEST(EventCollection, DoesNotWaitForAMapThatIsLockedDuringReplacement) {
  const EventFolder folder, replacement;
  EventMap map(folder, std::chrono::hours(1));
  ASSERT_TRUE(map.Load());
  std::filesystem::rename(replacement.Database(), folder.Database());
  EventMap other(folder);
  ASSERT_EQ(other.Database.ExecuteSQLCommand("begin exclusive"), 1);
  EXPECT_TRUE(!map.Database.ChangedElsewhere() && map.Database.NeedsAnotherCheck());
  other.Database.ExecuteSQLCommand("commit");
  EXPECT_TRUE(map.Database.ChangedElsewhere() && !map.Database.NeedsAnotherCheck());
  other.Database.ExecuteSQLCommand("begin exclusive");
  EXPECT_TRUE(!map.Database.ChangedElsewhere() && map.Database.NeedsAnotherCheck()) << "a lock alone";
  other.Database.ExecuteSQLCommand("commit");
  EXPECT_TRUE(!map.Database.ChangedElsewhere() && !map.Database.NeedsAnotherCheck());
}

TEST(EventCollection, LoadsUpToTheFirstUnusableRow) {
  const std::vector<std::tuple<std::string, int, std::string>> cases = {
      {"(null, 'n', 'd', 'c', 1, 0)", kNullValue, "Column EventID of row 3 of the event table holds null"},
      {"('2', 'n', 'd', 'c', 1, null)", kNullValue, "Column Zone of row 3 "},
      {"('2', 'n', 'd', 'c', 'maybe', 0)", kWrongType, "holds another type, expected a yes or no"},
      {"(x'32', 'n', 'd', 'c', 1, 0)", kWrongType,
       "Column EventID of row 3 of the event table holds a fraction or raw"},
      {"('1', 'n2', 'd', 'c', 1, 0)", kKeyTaken, "already holds an event with the key EM-1"},
      {"('2', 'n', 'd', 'c', 1, 32768)", kNumberTooLarge, "holds 32768, expected a whole number"},
  };
  for (const auto& [badRow, number, reported] : cases) {
    const EventFolder folder(kKeylessTable +
                             "insert into colclsKeploEvents values ('0', 'n', 'd', 'c', 1, 32767),"
                             " ('1', 'n', 'd', 'c', 1, -32768), " +
                             badRow + ", ('3', 'n', 'd', 'c', 1, 0)");
    EventMap map(folder);
    EXPECT_TRUE(!map.Load() && !map.Load()) << "the table is no better the second time";
    ASSERT_EQ(ShownAll(map.Errors), Texts(2, Report("Initialise", number)));
    ExpectPart(map.Errors[0].ErrorDescription, reported);
    EXPECT_EQ(map.Members(), (Texts{"0|n|d|c|on|32767", "1|n|d|c|on|-32768"}));
    EXPECT_EQ(map.List.Count(), 2);
  }
}

TEST(EventCollection, IsSilentIfTheTableCannotBeRead) {
  const AppFolder empty;
  EventMap map(empty);
  EXPECT_FALSE(map.Load());
  EXPECT_FALSE(map.Events.Add(Event("1")));
  EXPECT_FALSE(map.Events.Delete("1"));
  EXPECT_EQ(map.Events.count(), 0);

  const EventFolder without("drop table colclsKeploEvents");
  EventMap other(without);
  EXPECT_FALSE(other.Load());
  EXPECT_EQ(other.Database.ErrorDetails().ErrorDetail, "select * from colclsKeploEvents");
  EXPECT_TRUE(map.Errors.empty() && other.Errors.empty());
}

TEST(EventCollection, ReportsRefusalsEvenIfTheHandlerFails) {
  using Act = std::function<bool(EventMap&)>;
  const std::tuple<std::string, Act, std::string, int, std::string> cases[] = {
      {"a change of an unknown event", [](EventMap& map) { return map.Events.Update(Event("2")); }, "Save",
       kNoCurrentRow, ""},
      {"the end of an unknown event", [](EventMap& map) { return map.Events.Delete("2"); }, "Delete",
       kNoCurrentRow, ""},
      {"an EventID that another program added", [](EventMap& map) { return map.Events.Add(Event("1")); },
       "Save", SqliteFailureNumber(SQLITE_CONSTRAINT_UNIQUE), "already holds an event with this EventID"},
      {"a text that is too long",
       [](EventMap& map) { return map.Events.Add(Event("2", std::string(2'000'000, 'x'))); }, "Save",
       SqliteFailureNumber(SQLITE_TOOBIG), "takes no texts this long"},
      {"a row without a list", [](EventMap& map) { return map.Events.AddEventMapToListView(0, *Event("2")); },
       "AddEventMapToListView", kObjectNotSet, ""},
      {"a host that fails at an event",
       [](EventMap& map) {
         map.Load();
         map.Events.TriggerInputEvent = [](HostInputEvent&) { throw std::runtime_error("the host is out"); };
         return map.Events.TriggerEvent();
       },
       "TriggerEvent", 5, "the host is out"},
      {"a host that throws anything",
       [](EventMap& map) {
         map.Load();
         map.Events.TriggerInputEvent = [](HostInputEvent&) { throw 7; };
         return map.Events.TriggerEvent();
       },
       "TriggerEvent", 5, "A failure of an unknown kind"},
      {"a table without a column",
       [](EventMap& map) {
         map.Database.ExecuteSQLCommand("alter table colclsKeploEvents drop column Zone");
         return map.Load();
       },
       "Initialise", kNoSuchColumn, ""},
  };
  for (const auto& [name, act, operation, number, reported] : cases) {
    SCOPED_TRACE(name);
    const EventFolder folder("insert into colclsKeploEvents values ('1', 'a', '', '', 1, 0)");
    EventMap map(folder);
    map.Events.TriggerInputErrorCondition = [&](HostErrorRecord& record, bool&) {
      map.Errors.push_back(record);
      throw 7;
    };
    EXPECT_EQ(map.Events.ErrorRecord(), nullptr);
    EXPECT_FALSE(act(map));
    EXPECT_EQ(ShownAll(map.Errors), Texts{Report(operation, number)});
    ASSERT_NE(map.Events.ErrorRecord(), nullptr);
    ExpectPart(map.Events.ErrorRecord()->ErrorDescription, reported);
    EXPECT_EQ(map.Answer("select count(*) as events from colclsKeploEvents order by events"), "1");
  }
}

TEST(EventCollection, RaisesAnEventForEachMember) {
  const EventFolder folder(
      "insert into colclsKeploEvents values ('1', '', '', '', 1, 0), ('2', '', '', '', 1, 0)");
  EventMap map(folder);
  Texts raised;
  map.Events.TriggerInputEvent = [&](HostInputEvent& event) { raised.push_back(event.EventDate); };
  EXPECT_FALSE(map.Events.TriggerEvent()) << "nothing is loaded yet";
  map.List.Add("EM-2");  // the list's refusal is reported, but the event exists
  EXPECT_TRUE(map.Load());
  EXPECT_EQ(ShownAll(map.Errors), Texts{Report("AddEventMapToListView", 35602)});
  EXPECT_TRUE(map.Events.TriggerEvent());
  EXPECT_EQ(raised, (Texts{"07-Nov-2002 16:31:11", "07-Nov-2002 16:31:11"}));
}

}  // namespace
}  // namespace keplo::tests
