#include <sqlite3.h>

#include "events/event_row.h"
#include "keplo_mod.h"
#include "shell_fixture.h"
#include "signal/signal_builder.h"

namespace keplo::tests {
namespace {

class HostOperations : public ShellTest {
 protected:
  void SetUp() override {
    WriteConfig(Protocol("NEC", {"G" + kNecDigits + ",POWER", "G1111,MUTE"}));
    WriteEvents({{"1", "Lamp", "hall", "NEC&POWER", true, 0}, {"2", "Fan", "", "NEC&MUTE", false, 3}});
  }

  static HostInputEvent WithID(const std::string& id) {
    HostInputEvent event;
    event.EventID = id;
    return event;
  }
};

TEST_F(HostOperations, ChangeListTableAndCollectionAlike) {
  Keplo& control = Start();
  HostInputEvent added = WithID("O'Hara"), first = WithID("1");
  const auto expectRows = [&](const std::string& rows) {
    EXPECT_EQ(RowTexts(control.ListView1), rows);
    EXPECT_EQ(Stored(), rows);
  };
  Texts ids = {"old"};
  const std::string lamp = "Lamp|hall|NEC&POWER|True|0|1|\n", fan = "Fan||NEC&MUTE|False|3|2|\n",
                    power = "POWER|POWER from NEC|NEC&POWER|True|0|O'Hara|\n";
  EXPECT_EQ(control.InputAddEvent(added), 2) << "the user cancelled";
  EXPECT_EQ(added.EventName, "");
  expectRows(lamp + fan);
  AnswerOK();
  EXPECT_EQ(control.InputAddEvent(added), 1);
  EXPECT_EQ(added.EventName + "|" + added.EventDescription + "|" + std::get<std::string>(added.EventCommand),
            "POWER|POWER from NEC|NEC&POWER");
  expectRows(lamp + fan + power);
  EXPECT_EQ(control.InputModifyEvent(added), 1) << "the collection knows the new event";

  AnswerOK("Light");
  EXPECT_EQ(control.InputModifyEvent(first), 1);
  EXPECT_EQ(first.EventName, "Light");
  const std::string light = Replaced(lamp, "Lamp", "Light");
  expectRows(light + fan + power);
  dialog_.Script = nullptr;
  control.ListView1.SetText(1, kEventName, "spoilt");
  EXPECT_EQ(control.InputModifyEvent(first), 2);
  expectRows(light + fan + power);  // the row is rewritten from the record

  EXPECT_EQ(control.InputDeleteEvent(WithID("99")), 0);
  EXPECT_EQ(control.InputDeleteEvent(first), 1);
  expectRows(fan + power);
  EXPECT_EQ(control.InputModifyEvent(first), 0) << "the collection has let it go too";
  EXPECT_EQ(control.InputHouseKeepingGetEventIDs(ids), 1);
  EXPECT_EQ(ids, (Texts{"2", "O'Hara"}));
  for (const std::string& id : ids) control.InputDeleteEvent(WithID(id));
  control.InputHouseKeepingGetEventIDs(ids);
  EXPECT_EQ(ids, Texts{""});
}

TEST_F(HostOperations, TheListMenuSwitchesTheSelectedEventEverywhere) {
  Keplo& control = Start();
  std::string captions;
  for (const ui::MenuItem& item : control.RightClickMenu.Items) captions += item.Caption + ";";
  EXPECT_EQ(captions, "Enable;Disable;-;Help;");
  control.DisableMenu_Click();
  EXPECT_EQ(errors_, Texts{"colclsKeploEvents colclsKeploEvents.Save"}) << "no row is selected";
  errors_.clear();
  for (const auto& [row, item] : {std::pair(1, 1U), {1, 0U}, {2, 0U}}) {
    control.ListView1.Select(row);
    control.RightClickMenu.Items[item].OnClick();
    EXPECT_EQ(control.ListView1.Text(row, kActivated), item == 0 ? "True" : "False");
    EXPECT_EQ(Stored(), RowTexts(control.ListView1));
  }
  EXPECT_EQ(errors_, Texts{});
  control.RightClickMenu.Items[3].OnClick();
  EXPECT_TRUE(boxes_.Shown.at(0).starts_with("InputKeplo: Keplo Input Plugin v" + VersionText + "\r\n"));
}

TEST_F(HostOperations, ReportsWhyNothingWasStored) {
  Keplo& control = Start();
  HostInputEvent unknown = WithID("99"), taken = WithID("1");
  AnswerOK();
  EXPECT_EQ(control.InputModifyEvent(unknown), 0);
  EXPECT_EQ(control.InputErrorDetails()->ErrorProcedure, "InputModifyEvent");
  EXPECT_EQ(control.InputErrorDetails()->ErrorDate.substr(2, 10), "-Nov-2002 ");
  EXPECT_NE(control.InputErrorDetails()->ErrorNumber, 0);
  EXPECT_EQ(control.InputAddEvent(taken), 0);
  EXPECT_EQ(taken.EventName, "");
  EXPECT_EQ(RowTexts(control.ListView1), Stored());
  EXPECT_EQ(errors_,
            (Texts{"InputKeplo.Keplo InputModifyEvent", "colclsKeploEvents colclsKeploEvents.Save"}));
}

TEST_F(HostOperations, RestoresAnEventDeletedWhileItsMapWasReplaced) {
  Keplo& control = Start();
  const std::string before = RowTexts(control.ListView1);
  const auto map = folder_.Path() / "inputKeplo.mdb", away = folder_.Path() / "away";
  std::filesystem::rename(map, away);
  folder_.Write("inputKeplo.mdb", "a copy that has just begun");
  control.ApplyExternalChanges();
  EXPECT_EQ(control.InputDeleteEvent(WithID("2")), 0);
  EXPECT_EQ(control.ListView1.Count(), 1);
  EXPECT_EQ(errors_, Texts{});
  control.ApplyExternalChanges();
  std::filesystem::rename(away, map);
  control.ApplyExternalChanges();
  EXPECT_EQ(RowTexts(control.ListView1), before);
}

TEST_F(HostOperations, UndoesChangesThatALockPrevented) {
  Keplo& control = Start();
  control.ListView1.Select(2);
  AnswerOK("Light");
  HostInputEvent second = WithID("2");
  const auto modify = [&] {
    const int result = control.InputModifyEvent(second);
    dialog_.Script = nullptr;
    control.InputModifyEvent(second);  // the collection has what the list has
    return result;
  };
  const std::tuple<std::function<int()>, int, std::string> cases[] = {
      {modify, 0, "Light||NEC&MUTE|False|3|2|\n"},
      {[&] { return control.EnableMenu_Click(), 0; }, 0, "Fan||NEC&MUTE|True|3|2|\n"},
      {[&] { return control.InputDeleteEvent(second); }, 1, ""}};
  const std::string first = "Lamp|hall|NEC&POWER|True|0|1|\n", before = RowTexts(control.ListView1);
  for (const auto& [act, result, rowMeanwhile] : cases) {
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open((folder_.Path() / "inputKeplo.mdb").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(act(), result);
    EXPECT_EQ(control.ListDiffersFromMap(), rowMeanwhile.empty());
    control.ApplyExternalChanges();
    EXPECT_EQ(RowTexts(control.ListView1), first + rowMeanwhile) << "nobody waits for a lock";
    sqlite3_close(other);
    control.ApplyExternalChanges();
    EXPECT_EQ(RowTexts(control.ListView1), before);
    EXPECT_FALSE(control.ListDiffersFromMap());
    control.InputModifyEvent(second);
    EXPECT_EQ(RowTexts(control.ListView1), before) << "the collection has it too";
  }
}

TEST_F(HostOperations, OpensTheWindowWithoutTimerAndResetsTheLines) {
  Keplo& control = Start();
  int opened = 0;
  mainWindow_ = [&] {
    ++opened;
    EXPECT_FALSE(control.Timer1.Enabled());
    EXPECT_EQ(mod_->Settings.PluginMode, 1);
    mod_->Settings.InterfaceType = 9;
  };
  const Texts menuLines = {"RTS -1", "TXD 0", "RTS -1", "TXD 0"};
  EXPECT_TRUE(control.InputCallMenuItem(0));
  EXPECT_EQ(line_.TakeCalls(), menuLines);
  EXPECT_EQ(control.Panel.InterfaceType.Text(), "IRMouse / TxD");
  control.InputCallMenuItem(1);
  EXPECT_EQ(opened, 1) << "only the first item opens it";
  EXPECT_EQ(line_.TakeCalls(), menuLines);
  EXPECT_TRUE(control.Timer1.Enabled());

  mod_->Store.CfgText += "behind the end";
  control.InputConfigurePlugin();
  EXPECT_EQ(opened, 2);
  EXPECT_EQ(line_.TakeCalls(), (Texts{"RTS -1", "TXD 0", "RTS -1", "TXD 0", "DTR -1"}));
  EXPECT_EQ(folder_.Read("keplo.cfg"), mod_->Store.CfgText) << "it is saved, cut after [END]";
  control.InputStopMonitoring();
  line_.Calls.clear();
  control.InputConfigurePlugin();
  control.InputCallMenuItem(0);
  EXPECT_FALSE(control.Timer1.Enabled());
  EXPECT_EQ(line_.TakeCalls(), (Texts{"RTS -1", "TXD 0", "RTS -1", "TXD 0"}));
}

TEST_F(HostOperations, OneWindowAtATimeAndNoTickBelowIt) {
  Keplo& control = Start();
  int opened = 0;
  mainWindow_ = [&] {
    if (++opened > 1) return;
    control.InputCallMenuItem(0);
    control.InputConfigurePlugin();
    control.InputStartMonitoring();
    EXPECT_FALSE(control.Timer1.Enabled());
  };
  mod_->Settings.ReceiverKind = 0;
  EXPECT_EQ(control.InputConfigurePlugin(), 1);
  EXPECT_EQ(opened, 1);
  EXPECT_TRUE(control.Timer1.Enabled());
  EXPECT_EQ(std::count(line_.Calls.begin(), line_.Calls.end(), "DTR -1"), 0) << "the standard receiver";
  mainWindow_ = [&] { control.InputTerminate(); };
  control.InputCallMenuItem(0);
  EXPECT_FALSE(control.Timer1.Enabled()) << "the port is closed";
}

TEST_F(HostOperations, SavesNoDamagedTextAndReportsOtherPrograms) {
  Keplo& control = Start();
  std::string& text = mod_->Store.CfgText;
  text.replace(text.find("COMPORT= "), 10, "COMPORT= 7");  // a change that no save has taken to the file
  const std::string whole = text;
  folder_.Write("keplo.cfg", "of another program");
  control.InputConfigurePlugin();
  ASSERT_EQ(reported_.size(), 1U);
  ExpectPart(reported_[0], "keplo.cfg.other-1");
  EXPECT_EQ(folder_.Read("keplo.cfg.other-1"), "of another program");

  text = whole.substr(0, whole.find("[END]"));
  control.InputConfigurePlugin();
  EXPECT_EQ(folder_.Read("keplo.cfg"), whole) << "a save would cut the last section";
}

TEST_F(HostOperations, MonitoringContinuesWhateverFailsAroundTheWindow) {
  Keplo& control = Start();
  mainWindow_ = [] { throw Failure(7, "no window"); };
  control.TriggerInputErrorCondition = [&](HostErrorRecord& record, bool&) {
    errors_.push_back(record.ErrorProcedure);
    throw Failure(8, "the error handler fails too");
  };
  control.InputCallMenuItem(0);
  EXPECT_TRUE(control.Timer1.Enabled());
  std::filesystem::remove_all(folder_.Path());
  control.InputConfigurePlugin();
  EXPECT_TRUE(control.Timer1.Enabled());
  EXPECT_EQ(errors_, (Texts{"OpenMainWindow", "OpenMainWindow", "InputConfigurePlugin"}));
}

}  // namespace
}  // namespace keplo::tests
