#include <gtest/gtest.h>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

const std::string kDigits = "00000000111111110110100010010111";
const std::string kEmpty = "G10,EMPTY";
const std::string kLine = "G" + kDigits + ",VOL_UP";

std::string FileWith(const std::vector<std::string>& commands) { return Config(Protocol("Mine", commands)); }

class LearningStory : public WindowTest {
 protected:
  void RecordTwice() {
    Record(NecRuns(kDigits));
    Record(NecRuns(kDigits));
  }
};

TEST_F(LearningStory, AnUnknownRemoteIsRecordedStoredSentAndForgotten) {
  Form1& form = Open(FileWith({kEmpty}));

  Record(NecRuns(kDigits));
  EXPECT_EQ(CodeColour(), "red");
  form.SaveCmdButton.Click();
  form.SendButton.Click();
  EXPECT_EQ(boxes_.TakeShown(),
            (Texts{"The command is not yet validated. Pres again Record button to validate",
                   " The received command is not yet validated!"}));
  Record(NecRuns(kDigits));
  EXPECT_EQ(CodeColour(), "green");
  EXPECT_EQ(form.IRCommand.Text(), "?");

  boxes_.Names = {"VOL_UP"};
  form.SaveCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown(),
            Texts{"Input new command name: Enter the name for the new command.\nUse only a-z, A-Z,'-','_' "
                  "characters"});
  EXPECT_EQ(File(), FileWith({kEmpty, kLine}));
  EXPECT_EQ(mod_->Store.CfgText, FileWith({kLine}));
  EXPECT_EQ(form.SendCmd.Entries(), (Texts{"EMPTY", "VOL_UP"}));
  EXPECT_EQ(form.SendCmd.Text(), "VOL_UP");
  EXPECT_EQ(form.CodeStr.Text(), "G" + kDigits);
  EXPECT_EQ(CodeColour(), "plain");
  EXPECT_EQ(form.IRCommand.Text(), "Mine&VOL_UP");

  Record(NecRuns(kDigits));
  EXPECT_EQ(form.IRCommand.Text(), "Mine&&VOL_UP");
  EXPECT_EQ(CodeColour(), "plain");
  form.SendButton.Click();
  EXPECT_EQ(form.IRCommand.Text(), "Mine / VOL_UP");
  EXPECT_EQ(line_.Calls.back(), "SpeakBeep 2000 50");

  form.DeleteCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"Do you want to delete the command VOL_UP from the current protocol?"});
  EXPECT_EQ(File(), FileWith({}));
  EXPECT_EQ(mod_->Store.CfgText, FileWith({kEmpty}));
  EXPECT_EQ(form.SendCmd.Entries(), Texts{"EMPTY"});
  EXPECT_EQ(form.CodeStr.Text(), "G10");
  form.DeleteCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"There are no more commands to delete"});

  form.Form_Unload();
  EXPECT_EQ(File(), FileWith({kEmpty}));
  EXPECT_EQ(line_.Calls.back(), "CloseCom");
}

TEST_F(LearningStory, ASecondNewCodeStaysOnScreenAfterTheFirstWasStored) {
  Form1& form = Open(FileWith({kEmpty}));
  RecordTwice();
  boxes_.Names = {"VOL_UP"};
  form.SaveCmdButton.Click();

  const std::string other = "11111111000000001110000000011111";
  Record(NecRuns(other));
  EXPECT_EQ(form.CodeStr.Text(), "G" + other);
  Record(NecRuns(other));
  EXPECT_EQ(CodeColour(), "red");  // it is no second press of the stored one, and counts as a first from here
  Record(NecRuns(other));
  boxes_.Names = {"VOL_DOWN"};
  form.SaveCmdButton.Click();
  EXPECT_EQ(File(), FileWith({kLine, "G" + other + ",VOL_DOWN"}));
}

TEST_F(LearningStory, TheNameIsAskedForUntilItFits) {
  Form1& form = Open(FileWith({"G111000,MUTE_ALL"}));
  RecordTwice();
  boxes_.Names = {"VOL UP", "mute", "560", " "};
  form.SaveCmdButton.Click();

  const std::string ask =
      "Input new command name: Enter the name for the new command.\nUse only a-z, A-Z,'-','_' characters";
  const std::string taken = "This command name is in use for the current protocol.";
  EXPECT_EQ(boxes_.TakeShown(),
            (Texts{ask, "Use only a-z, A-Z,'-','_' characters", ask, taken, ask, taken, ask, taken, ask}));
  EXPECT_EQ(File(), FileWith({"G111000,MUTE_ALL"}));
  EXPECT_EQ(CodeColour(), "green");
}

TEST_F(LearningStory, CodesThatCannotBeStoredAreRefused) {
  Form1& form = Open(FileWith({"G" + kDigits + "01,LONGER", "G111000,MUTE"}));
  Record(Frames(SonyRuns("101000100010"), 3));
  ASSERT_EQ(CodeColour(), "green");
  for (const char* code : {"G1", "G10x0", "G10G11"}) {
    form.CodeStr.SetText(code);
    form.SaveCmdButton.Click();
    EXPECT_EQ(boxes_.TakeShown(), Texts{"The code you want to save is invalid."}) << code;
  }
  form.CodeStr.SetText(" G" + kDigits);
  form.SaveCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"This command exist as LONGER"});
}

TEST_F(LearningStory, TemplateAndRecordedNeitherTakeNorGiveCommands) {
  Form1& form = Open(FileWith({kEmpty}));
  const std::vector<std::pair<const char*, const char*>> refusals = {
      {"Template", "This protocol is read-only."}, {"Recorded", "This is a virtual read-only protocol!"}};
  for (const auto& [protocol, refusal] : refusals) {
    form.Protocol.SelectText(protocol);
    form.SaveCmdButton.Click();
    form.DeleteCmdButton.Click();
    EXPECT_EQ(boxes_.TakeShown(), (Texts{refusal, refusal}));
  }
}

TEST_F(LearningStory, AFailedSaveIsToldAndTheCodeStays) {
  Form1& form = Open(FileWith({kEmpty}));
  RecordTwice();
  boxes_.Names = {"VOL_UP", "VOL_UP"};
  disk_.FailAt(1, true);
  form.SaveCmdButton.Click();

  EXPECT_EQ(boxes_.TakeShown().back(),
            "The configuration was not saved, /home/keplo.cfg is as it was: operation 1");
  EXPECT_EQ(mod_->Store.CfgText, File());
  EXPECT_EQ(File(), FileWith({kEmpty}));
  EXPECT_EQ(form.CodeStr.Text(), "G" + kDigits);
  EXPECT_EQ(CodeColour(), "green");

  disk_.FailAt(0, false);
  form.SaveCmdButton.Click();
  EXPECT_EQ(File(), FileWith({kEmpty, kLine}));
  boxes_.Shown.clear();
  disk_.FailAt(1, true);
  form.DeleteCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown().size(), 2U);
  EXPECT_EQ(form.SendCmd.Text(), "VOL_UP");
  EXPECT_EQ(mod_->Store.CfgText, FileWith({kLine}));
}

TEST_F(LearningStory, TheListFollowsASaveThatFailedAtItsVeryEnd) {
  // As long as the placeholder's line, so that the text keeps its length.
  Form1& form = Open(FileWith({"G1010,VOL"}));
  const int before = disk_.Operations();
  form.BeepCheckbox.SetChecked(false);
  const int ofASave = disk_.Operations() - before;
  disk_.FailAt(ofASave, true);
  form.DeleteCmdButton.Click();
  EXPECT_EQ(form.SendCmd.Text() + " " + form.CodeStr.Text(), "EMPTY G10");
  EXPECT_NE(boxes_.TakeShown().back().find("a power cut may bring the old file back"), std::string::npos);
  disk_.FailAt(0, false);
}

TEST_F(LearningStory, AnAnswerOfNoDeletesNothing) {
  Form1& form = Open(FileWith({kLine}));
  boxes_.Yes = false;
  form.DeleteCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"Do you want to delete the command VOL_UP from the current protocol?"});
  EXPECT_EQ(mod_->Store.CfgText, FileWith({kLine}));
  EXPECT_EQ(form.SendCmd.Text(), "VOL_UP");
}

TEST_F(LearningStory, AFullFileRefusesTheCommandBeforeAnythingChanges) {
  std::string full = FileWith({kEmpty});
  full.insert(full.find("# made"), Lines({"#" + std::string(kMostCharacters - full.size() - 13, '.')}));
  Form1& form = Open(full);
  RecordTwice();
  boxes_.Names = {"VOL_UP"};
  form.SaveCmdButton.Click();
  EXPECT_EQ(boxes_.Shown.size(), 2U);
  EXPECT_EQ(File(), full);
  EXPECT_EQ(mod_->Store.CfgText, full);
  EXPECT_EQ(form.CodeStr.Text(), "G" + kDigits);
}

TEST_F(LearningStory, AProtocolBringsItsCommandsAndKeepsItsPlaceInTheFile) {
  const std::string sections = Protocol("One", {"G111000,MUTE"}) + Protocol("Bare", {});
  Form1& form = Open(Config(sections));
  EXPECT_EQ(form.Protocol.Entries(), (Texts{"One", "Bare", "Template", "Recorded"}));
  EXPECT_EQ(form.CodeStr.Text(), "G111000");
  EXPECT_EQ(form.SendPulse.Text(), "560");

  form.Protocol.Select(1);
  EXPECT_EQ(form.SendCmd.Count(), 0);
  form.DeleteCmdButton.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"There are no more commands to delete"});

  form.Protocol.SelectText("Recorded");
  EXPECT_EQ(form.Protocol.BackColour(), ui::kGreen);
  EXPECT_EQ(form.SendCmd.Entries(), Texts{"Recorded"});
  EXPECT_EQ(form.CodeStr.Text() + form.SendPulse.Text(), "");
  form_.reset();
  std::string expected = Config(sections);
  expected.replace(expected.find("PROTOCOL= 0"), 11, "PROTOCOL= 1");
  EXPECT_EQ(File(), expected);
}

}  // namespace
}  // namespace keplo::tests
