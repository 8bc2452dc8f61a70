#include <gtest/gtest.h>

#include "window/new_protocol.h"
#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

const std::string kEmpty = "G10,EMPTY";
const std::string kLine = "G" + kNecDigits + ",VOL_UP";
const std::string kAsk =
    "Input new command name: Enter the name for the new command.\nUse only a-z, A-Z,'-','_' characters";

std::string FileWith(const std::vector<std::string>& commands) { return Config(Protocol("Mine", commands)); }

class CommandList : public WindowTest {
 protected:
  void RecordTwice() {
    for (int press = 0; press < 2; ++press) Record(NecRuns(kNecDigits));
    ASSERT_EQ(CodeColour(), "green");
  }
  Texts Save(const std::deque<std::string>& names) {
    boxes_.Names = names;
    form_->SaveCmdButton.Click();
    return boxes_.TakeShown();
  }
  Texts Delete() {
    form_->DeleteCmdButton.Click();
    return boxes_.TakeShown();
  }
  /// Another program writes the file, and the window looks at it.
  void WriteOutside(const std::string& file) {
    disk_.Put("keplo.cfg", file);
    form_->FileTimer.Tick();
  }
};

TEST_F(CommandList, AnUnknownRemoteIsRecordedStoredSentAndForgotten) {
  Form1& form = Open(FileWith({kEmpty}));
  Record(NecRuns(kNecDigits));
  EXPECT_EQ(CodeColour(), "red");
  EXPECT_EQ(Save({}), Texts{"The command is not yet validated. Pres again Record button to validate"});
  form.SendButton.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{" The received command is not yet validated!"});
  Record(NecRuns(kNecDigits));
  EXPECT_EQ(form.IRCommand.Text(), "?");

  EXPECT_EQ(Save({"VOL_UP"}), Texts{kAsk});
  EXPECT_EQ(File(), FileWith({kEmpty, kLine}));
  EXPECT_EQ(mod_->Store.CfgText, FileWith({kLine}));
  EXPECT_EQ(form.SendCmd.Entries(), (Texts{"EMPTY", "VOL_UP"}));
  EXPECT_EQ(form.SendCmd.Text() + " " + form.CodeStr.Text(), "VOL_UP G" + kNecDigits);
  EXPECT_EQ(CodeColour() + " " + form.IRCommand.Text(), "plain Mine&VOL_UP");

  Record(NecRuns(kNecDigits));
  EXPECT_EQ(CodeColour() + " " + form.IRCommand.Text(), "plain Mine&&VOL_UP");
  form.SendButton.Click();
  EXPECT_EQ(form.IRCommand.Text(), "Mine / VOL_UP");

  boxes_.Yes = false;
  EXPECT_EQ(Delete(), Texts{"Do you want to delete the command VOL_UP from the current protocol?"});
  EXPECT_EQ(mod_->Store.CfgText, FileWith({kLine}));
  boxes_.Yes = true;
  Delete();
  EXPECT_EQ(File(), FileWith({}));
  EXPECT_EQ(form.SendCmd.Entries(), Texts{"EMPTY"});
  EXPECT_EQ(form.CodeStr.Text(), "G10");
  EXPECT_EQ(Delete(), Texts{"There are no more commands to delete"});
  form.Form_Unload();
  EXPECT_EQ(File(), FileWith({kEmpty}));
  EXPECT_EQ(line_.Calls.back(), "CloseCom");
}

TEST_F(CommandList, SavedCommandsAreSentAsRecorded) {
  Open(FileWith({kEmpty}));
  mod_->Settings.Analysis = Analysis::Second;
  RecordTwice();
  mod_->Signal.SendAs = "16";
  Save({"BOTH"});
  EXPECT_EQ(mod_->ProtocolParams.SENDAS, "16");
}

TEST_F(CommandList, AsksForANameUntilValidAndNamesTheDuplicate) {
  Form1& form = Open(FileWith({"G" + kNecDigits + "01,LONGER", "G111000,MUTE_ALL"}));
  Record(Frames(SonyRuns("101000100010"), 3));
  EXPECT_EQ(Save({"VOL UP", "mute"}), (Texts{kAsk, "Use only a-z, A-Z,'-','_' characters", kAsk,
                                             "This command name is in use for the current protocol.", kAsk}));
  EXPECT_EQ(boxes_.Presets, (Texts{"", "VOL UP", "mute"}));
  EXPECT_EQ(boxes_.Reasons, Texts{"mute stands in the line \"G111000,MUTE_ALL\" already."});
  EXPECT_EQ(CodeColour(), "green");
  form.CodeStr.SetText("G10x0");
  EXPECT_EQ(Save({}), Texts{"The code you want to save is invalid."});
  form.CodeStr.SetText(" G" + kNecDigits);
  EXPECT_EQ(Save({}), Texts{"This command exist as LONGER"});
  EXPECT_EQ(boxes_.Reasons.back(), "It is a command of the protocol Mine.");
  form.Protocol.SelectText("Template");
  EXPECT_EQ(Delete(), Texts{"This protocol is read-only."});

  Open(Replaced(FileWith({kEmpty}), "PROTOCOL= 0", "PROTOCOL= 99"));
  RecordTwice();
  EXPECT_EQ(Save({"VOL_UP"}), Texts{"Choose a protocol first."});
}

TEST_F(CommandList, AFailedSaveIsReportedAndTheListsFollowTheFile) {
  const std::string before = FileWith({"G1010,VOL", "G1100,MUTE"});
  const auto describe = [&](const ui::MenuEntry& menu) {
    menu.Click();
    form_->ProtocolDialog()->ProtDesc.SetText("Living room");
    form_->ProtocolDialog()->CreateButton.Click();
  };
  const std::vector<std::function<void()>> changes = {
      [&] { form_->SaveCmdButton.Click(); }, [&] { form_->DeleteCmdButton.Click(); },
      [&] { describe(form_->FileNewMenu); }, [&] { describe(form_->EditMenu); },
      [&] { form_->ProtoDeleteMenu.Click(); }};
  for (std::size_t change = 0; change < changes.size(); ++change) {
    std::string reported;
    for (int operation = 1; reported.find("may bring the old file back") == std::string::npos; ++operation) {
      ASSERT_LT(operation, 40) << change;
      Form1& form = Open(before);
      if (change == 0) RecordTwice();
      boxes_.Names = {"VOL_UP"};
      disk_.FailAt(operation, true);
      changes[change]();
      disk_.FailAt(0, false);
      reported = boxes_.TakeShown().back();
      const bool isAsItWas = reported.find("is as it was: operation") != std::string::npos;
      EXPECT_EQ(File() == before, isAsItWas) << reported;
      EXPECT_EQ(mod_->Store.CfgText, File()) << reported;
      EXPECT_NE(form.UndoMenu.Enabled(), isAsItWas) << reported;
      EXPECT_EQ(CodeColour(), change == 0 && isAsItWas ? "green" : "plain") << "it can be saved again";
      const Texts protocols = form.Protocol.Entries(), commands = form.SendCmd.Entries();
      Open(File());
      EXPECT_EQ(protocols, form_->Protocol.Entries()) << reported;
      EXPECT_EQ(commands, form_->SendCmd.Entries()) << reported;
    }
  }
  std::string full = FileWith({kEmpty});
  full.insert(full.find("# made"), Lines({"#" + std::string(kMostCharacters - full.size() - 13, '.')}));
  Open(full);
  RecordTwice();
  EXPECT_EQ(Save({"VOL_UP"}).size(), 2U);
  EXPECT_EQ(mod_->Store.CfgText, full);
}

TEST_F(CommandList, UndoRestoresFileAndLists) {
  Form1& form = Open(FileWith({"G111000,MUTE", "G1010,VOL"}));
  EXPECT_FALSE(form.UndoMenu.Enabled());
  form.SendCmd.SelectText("VOL");
  Delete();
  form.BeepCheckbox.SetChecked(false);  // no change that Undo is about, and it stays
  ASSERT_TRUE(form.UndoMenu.Enabled());
  form.UndoMenu.Click();
  const std::string restored = Replaced(FileWith({"G111000,MUTE", "G1010,VOL"}), "BEEPON= 1", "BEEPON= 0");
  EXPECT_EQ(File(), restored);
  EXPECT_EQ(form.SendCmd.Text() + " " + form.CodeStr.Text(), "VOL G1010");
  EXPECT_FALSE(form.UndoMenu.Enabled());

  for (int command = 0; command < 2; ++command) {
    form.SendCmd.Select(0);
    Delete();
  }
  form.UndoMenu.Click();
  ASSERT_TRUE(form.UndoMenu.Enabled()) << "one step each";
  disk_.Put("keplo.cfg", Replaced(File(), "G1010,VOL", "G1010,LOUDER"));
  form.UndoMenu.Click();
  EXPECT_EQ(boxes_.TakeShown().back().substr(0, 31), "The change cannot be taken back");
  EXPECT_TRUE(form.UndoMenu.Enabled());
}

TEST_F(CommandList, ReloadsOtherProgramsChangesAndKeepsTheSelection) {
  const std::string tv = Protocol("TV", {"G111000,MUTE"});
  Form1& form = Open(Config(Protocol("One", {"G1010,UP", "G1100,DOWN"}) + tv));
  form.Protocol.SelectText("TV");
  WriteOutside(Config(Protocol("One", {"G1010,UP"}) + tv));
  EXPECT_EQ(form.Protocol.Text() + " " + form.SendCmd.Text(), "TV MUTE");

  const std::string newTv = Protocol("TV", {"G0011,MENU", "G111001,MUTE"});
  form.CodeStr.SetText("G1011");
  boxes_.WhileOpen = [&] {
    WriteOutside(Config(newTv));
    EXPECT_EQ(form.Protocol.Count(), 4) << "a box is open";
  };
  form.AboutMenu.Click();
  boxes_.WhileOpen = [] {};
  form.FileTimer.Tick();
  EXPECT_EQ(form.Protocol.Entries(), (Texts{"TV", "Template", "Recorded"}));
  EXPECT_EQ(form.SendCmd.Entries(), (Texts{"MENU", "MUTE"}));
  EXPECT_EQ(form.SendCmd.Text() + " " + form.CodeStr.Text(), "MUTE G1011") << "what was typed stays";
  form.SendCmd.Select(0);
  WriteOutside(Config(Protocol("TV", {"G0111,MENU"})));
  EXPECT_EQ(form.CodeStr.Text(), "G0111") << "what is listed follows";

  const std::string settings = Config(Protocol("TV", {"G0111,MENU"}), General("7 0 28 8 0 3"));
  WriteOutside(settings);
  EXPECT_FALSE(form.BeepCheckbox.Checked());
  EXPECT_EQ(
      form.ReceiverType.Text() + form.Zone.Text() + form.ProcDelayparameter.Text() + form.ComList.Text(),
      "IRMouse328COM 7");

  WriteOutside("half a file");
  ExpectPart(form.Note.Text(), "is not taken in");
  EXPECT_EQ(form.Protocol.Text(), "TV");
  disk_.Put("keplo.cfg", settings);
  form.FileTimer.Tick();
  const int operations = disk_.Operations();
  form.Form_Unload();
  EXPECT_EQ(disk_.Files().size(), 1U);
  EXPECT_EQ(File(), settings);
  EXPECT_LE(disk_.Operations() - operations, 2) << "nothing is written, only looked at";
}

TEST_F(CommandList, CreatesAtMostOneConflictCopy) {
  Form1& form = Open(FileWith({"G1010,VOL"}));
  disk_.FailAt(1, true);
  form.BeepCheckbox.SetChecked(false);  // not saved yet
  disk_.FailAt(0, false);
  disk_.Put("keplo.cfg", Replaced(File(), "BEEPON= 1", "BEEPON=  1"));
  form.Form_Unload();
  EXPECT_EQ(disk_.Files().size(), 2U);
}

TEST_F(CommandList, SelectingAProtocolListsItsCommands) {
  const std::string sections = Protocol("One", {"G111000,MUTE"}) + Protocol("Bare", {});
  Form1& form = Open(Config(sections));
  EXPECT_EQ(form.CodeStr.Text() + " " + form.SendPulse.Text(), "G111000 560");
  form.Protocol.Select(1);
  EXPECT_EQ(form.SendCmd.Count(), 0);
  EXPECT_EQ(Delete(), Texts{"There are no more commands to delete"});
  form.Protocol.SelectText("Recorded");
  EXPECT_EQ(form.Protocol.BackColour(), ui::kGreen);
  EXPECT_EQ(form.SendCmd.Entries(), Texts{"Recorded"});
  EXPECT_EQ(form.CodeStr.Text() + form.SendPulse.Text(), "");
  form_.reset();
  EXPECT_EQ(File(), Replaced(Config(sections), "PROTOCOL= 0", "PROTOCOL= 1"));
}

}  // namespace
}  // namespace keplo::tests
