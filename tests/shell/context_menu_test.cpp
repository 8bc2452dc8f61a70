#include "keplo_mod.h"
#include "shell_fixture.h"

namespace keplo::tests {
namespace {

class ContextMenu : public ShellTest {
 protected:
  void SetUp() override { WriteConfig(""); }
};

TEST_F(ContextMenu, OpensOnTheRightButtonOnly) {
  Keplo& control = Create();
  int shown = 0;
  control.RightClickMenu.OnPopUp = [&] { ++shown; };
  for (const int button : {1, 2, 4}) control.ListView1_MouseDown(button);
  EXPECT_EQ(shown, 1);
  std::string captions;
  for (const ui::MenuItem& item : control.RightClickMenu.Items) captions += item.Caption + ";";
  EXPECT_EQ(captions, "Enable;Disable;-;Help;");
  control.RightClickMenu.Items[3].OnClick();
  ASSERT_EQ(boxes_.Shown.size(), 1U);
  EXPECT_EQ(boxes_.Shown[0].substr(0, boxes_.Shown[0].find("\r\n")),
            "InputKeplo: Keplo Input Plugin v" + VersionText);
}

TEST_F(ContextMenu, SwitchesTheSelectedEventInAllThreePlaces) {
  WriteEvents({{"1", "Lamp", "in the hall", "NEC&POWER", true, 3}, {"2", "Fan", "", "NEC&FAN1", false, 0}});
  Keplo& control = Start();
  control.ListView1.Select(1);
  control.RightClickMenu.Items[1].OnClick();
  EXPECT_EQ(control.ListView1.Text(1, 3), "False");
  EXPECT_EQ(Stored(), "Lamp|in the hall|NEC&POWER|False|3|1|\nFan||NEC&FAN1|False|0|2|\n");

  control.RightClickMenu.Items[0].OnClick();
  control.ListView1.Select(2);
  control.RightClickMenu.Items[0].OnClick();
  EXPECT_EQ(Stored(), "Lamp|in the hall|NEC&POWER|True|3|1|\nFan||NEC&FAN1|True|0|2|\n");
  EXPECT_EQ(errors_, Texts{});
}

TEST_F(ContextMenu, DoesNothingOnAnEmptyListAndFailsLoudlyWithoutASelection) {
  WriteEvents({});
  Keplo& empty = Start();
  empty.EnableMenu_Click();
  EXPECT_EQ(errors_, Texts{});

  std::filesystem::remove(folder_.Path() / "inputKeplo.mdb");
  WriteEvents({{"1", "Lamp", "", "NEC&POWER", true, 0}});
  Keplo& control = Start();
  control.DisableMenu_Click();
  EXPECT_EQ(errors_, Texts{"colclsKeploEvents colclsKeploEvents.Save"});
  EXPECT_EQ(control.ListView1.Text(1, 3), "True");
}

}  // namespace
}  // namespace keplo::tests
