#include "shell/frm_event.h"

#include "shell_fixture.h"

namespace keplo::tests {
namespace {

class EventDialog : public EventDialogTest {
 protected:
  bool Show(std::int32_t mode, const std::function<void(frmEvent&)>& script) {
    frmEvent dialog(store_, settings_);
    ScriptedDialog shower;
    shower.Script = script;
    return dialog.ShowMe(mode, event_, shower);
  }

  std::string Stored() const {
    return event_.EventName + "|" + event_.EventDescription + "|" + event_.IRCommand + "|" +
           (event_.Enabled ? "on" : "off") + "|" + std::to_string(event_.Zone);
  }
};

TEST_F(EventDialog, ProposesTheFirstCommandUntilAnotherIsPicked) {
  EXPECT_TRUE(Show(0, [](frmEvent& dialog) {
    EXPECT_EQ(dialog.Title(), "Add New Event");
    EXPECT_EQ(dialog.Protocol.Entries(), (Texts{"NEC", "SONY", "Template"}));
    EXPECT_EQ(dialog.SendCmd.Entries(), (Texts{"POWER", "MUTE"}));
    dialog.EventName.SetText("Lamp");
    dialog.SendCmd.Select(1);
    EXPECT_EQ(dialog.EventName.Text(), "MUTE");
    dialog.EventName.SetText("Quiet");
    dialog.OKButton_Click();
  }));
  EXPECT_EQ(Stored(), "Quiet|MUTE from NEC|NEC&MUTE|on|0");

  store_.CurProtocol = "SONY";
  store_.CurCommand = "PLAY";
  for (const std::string proposed :
       {"POWER|POWER from NEC|NEC&POWER|on|0", "EMPTY|EMPTY from Template|Template&EMPTY|on|0"}) {
    EXPECT_TRUE(Show(0, [](frmEvent& dialog) { dialog.OKButton_Click(); }));
    EXPECT_EQ(Stored(), proposed);
    store_.CfgText = Config("");
  }
}

TEST_F(EventDialog, EditsAStoredEvent) {
  event_ = {"7", "Lamp", "in the hall", "SONY&PLAY", false, 3};
  Show(1, [](frmEvent& dialog) {
    EXPECT_EQ(dialog.Title(), "Edit Existing Event");
    EXPECT_EQ(dialog.Protocol.Text() + "&" + dialog.SendCmd.Text(), "SONY&PLAY");
    EXPECT_EQ(dialog.EventName.Text(), "Lamp");
    EXPECT_FALSE(dialog.EvtEnable.Checked());
    EXPECT_EQ(dialog.ZoneListBox.Text(), "3");
    dialog.ZoneListBox.Select(5);
    dialog.OKButton_Click();
  });
  EXPECT_EQ(Stored(), "Lamp|in the hall|SONY&PLAY|off|3") << "without zone hardware the zone stays";

  settings_.VexilMode = 1;
  Show(1, [](frmEvent& dialog) {
    EXPECT_TRUE(dialog.ZoneVisible);
    dialog.ZoneListBox.Select(5);
    dialog.OKButton_Click();
  });
  EXPECT_EQ(Stored(), "Lamp|in the hall|SONY&PLAY|off|5");

  event_.Zone = 9;
  Show(1, [](frmEvent& dialog) { dialog.OKButton_Click(); });
  EXPECT_EQ(event_.Zone, 9) << "a zone that the list does not offer stays";
}

TEST_F(EventDialog, OpensWithoutASelectionForADeadReference) {
  for (const auto& [reference, protocol] : std::vector<std::pair<std::string, std::string>>{
           {"GONE&POWER", ""}, {"NEC&GONE", "NEC"}, {"SONY&OFF", "NEC"}, {"A&B&CDE", ""}}) {
    event_ = {"7", "Lamp", "hall", reference, true, 0};
    EXPECT_FALSE(Show(1, [reference = reference, protocol = protocol](frmEvent& dialog) {
      EXPECT_EQ(dialog.Protocol.Text(), protocol) << reference;
      EXPECT_EQ(dialog.SendCmd.Text(), "") << reference;
      EXPECT_EQ(dialog.EventName.Text(), "Lamp") << reference;
      dialog.CancelButton_Click();
    }));
    EXPECT_EQ(event_.IRCommand, reference) << "a cancel leaves the event untouched";
  }
}

}  // namespace
}  // namespace keplo::tests
