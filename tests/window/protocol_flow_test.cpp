#include <gtest/gtest.h>

#include "window/new_protocol.h"
#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

const std::string kMine = Protocol("Mine", {"G1010,POWER", "G1100,MUTE"});
const std::string kOther = Protocol("TV", {"G10,EMPTY"});
const std::string kTemplate = Protocol("Template", {"G10,EMPTY"}) + "[END]\r\n";
const std::string kBefore = kGeneral + kMine + kOther + kTemplate;

class ProtocolFlow : public WindowTest {
 protected:
  ProtocolFlow() { Open(kBefore); }

  NewProtocol& Dialog() { return *form_->ProtocolDialog(); }
  NewProtocol& New() {
    form_->FileNewMenu.Click();
    return Dialog();
  }
  NewProtocol& Edit(const std::string& protocol) {
    form_->Protocol.SelectText(protocol);
    form_->EditMenu.Click();
    return Dialog();
  }
  void Cancel() { Dialog().CancelButton.Click(); }

  /// Presses Save and returns what is shown; by default, questions are answered with no.
  Texts Save(bool yes = false) {
    boxes_.Yes = yes;
    Dialog().CreateButton.Click();
    return boxes_.TakeShown();
  }

  /// The fields from one on.
  Texts Fields(int from = 0) {
    const NewProtocol& d = Dialog();
    const Texts all = {d.CProtIn.Text(),   d.ProtDesc.Text(), d.GProtoIn.Text(),
                       d.SendPlsIn.Text(), d.RepeatIn.Text(), d.GRepeatIn.Text(),
                       d.BitGIn.Text(),    d.Bit0In.Text(),   d.Bit1In.Text()};
    return {all.begin() + from, all.end()};
  }
};

TEST_F(ProtocolFlow, ANewProtocolStartsFromTheTemplateAndBecomesCurrent) {
  form_->Protocol.Select(1);
  NewProtocol& dialog = New();
  EXPECT_EQ(Fields(), (Texts{"NewProtocol", "", "NEC", " 560", " 0", "72", "1100", "10", "1000"}));
  EXPECT_TRUE(dialog.CProtIn.Enabled());
  dialog.CProtIn.SetText("mine");
  EXPECT_EQ(Save(), Texts{"The new protocol name is in use"});
  dialog.CProtIn.SetText(" Lamp ");
  dialog.ProtDesc.SetText(" By the window ");
  dialog.GProtoIn.Select(2);
  EXPECT_EQ(Save(), Texts{"BITx must not be empty, if no BITG, then BITG=0"});
  dialog.BitGIn.SetText(" 0 ");
  const std::string block =
      "\r\n[Lamp]\r\n# By the window\r\nGPROTO= 2\r\nSENDPLS= 850\r\nREPEAT= 150\r\nBITG= 0\r\nBIT0= 10\r\n"
      "BIT1= 01\r\nGREPEAT= 0\r\n\r\nG10,EMPTY\r\n";
  EXPECT_EQ(Save(), Texts{"A new protocol with the following parameters will be created:\r\n" + block +
                          "\r\nDo you want to save it?"});
  ASSERT_EQ(form_->ProtocolDialog(), &dialog);
  EXPECT_EQ(File(), kBefore);

  // Another program deletes a protocol while the question is open.
  boxes_.WhileOpen = [&] { disk_.Put("keplo.cfg", kGeneral + kMine + kTemplate); };
  Save(true);
  boxes_.WhileOpen = [] {};
  EXPECT_EQ(form_->ProtocolDialog(), nullptr);
  EXPECT_EQ(File(),
            Replaced(kGeneral, "PROTOCOL= 0", "PROTOCOL= 1") + kMine + block.substr(2) + "\r\n" + kTemplate);
  EXPECT_EQ(form_->Protocol.Entries(), (Texts{"Mine", "Lamp", "Template", "Recorded"}));
  EXPECT_EQ(form_->Protocol.Text() + mod_->Store.CurProtocol, "LampLamp");
  EXPECT_EQ(form_->SendPulse.Text() + form_->SendCmd.Text(), " 850EMPTY");
  EXPECT_EQ(mod_->ProtocolParams.REPEAT, 150);
  form_->UndoMenu.Click();
  EXPECT_EQ(form_->Protocol.Entries(), (Texts{"Mine", "Template", "Recorded"}));
}

TEST_F(ProtocolFlow, AYesThatComesAfterItsWindowHasGoneSavesNothing) {
  New();
  boxes_.WhileOpen = [&] { form_->Form_Unload(); };
  EXPECT_EQ(Save(true).size(), 1U);
  EXPECT_EQ(File(), kBefore);
}

TEST_F(ProtocolFlow, WhatIsRecordedBringsItsPresets) {
  const std::string sync = "111111111111111100000000";
  form_->Protocol.SelectText("Recorded");
  form_->CodeStr.SetText("G1010");
  New();
  EXPECT_EQ(Fields()[0], "NewProtocol") << "without the number of digits the template counts";
  Cancel();
  form_->BitNr.SetText("4");
  form_->SendPulse.SetText("600");
  constexpr std::int16_t kOtherKind = 7;
  for (const auto& [kind, preset] :
       std::vector<std::pair<std::int16_t, Texts>>{{kNec, {"NEC", "600", "50", "1", sync, "10", "1000"}},
                                                   {kSony, {"SONY", "600", "50", "40", "1111", "01", "011"}},
                                                   {kRc5, {"RC5", "600", "90", "0", "", "10", "01"}},
                                                   {kUnknown, {"Custom", "600", "50", "1", "0110", "1", "0"}},
                                                   {kOtherKind, {"", "600", "", "", "0110", "1", "0"}}}) {
    mod_->Signal.Measured.ProtoKind = kind;
    mod_->ProtocolParams = {1, 1, "1", "0", "0110", 1, ""};
    New();
    EXPECT_EQ(Fields(2), preset);
    Cancel();
    EXPECT_EQ(form_->Protocol.Text() + form_->CodeStr.Text(), "RecordedG1010");
  }
}

TEST_F(ProtocolFlow, AnEditReplacesTheParametersAndKeepsTheCommands) {
  NewProtocol& dialog = Edit("Mine");
  EXPECT_EQ(Fields(), (Texts{"Mine", "made for a test", "NEC", " 560", " 0", "72", "1100", "10", "1000"}));
  EXPECT_FALSE(dialog.CProtIn.Enabled());
  dialog.ProtDesc.SetText("Living room");
  dialog.RepeatIn.SetText("40.5");
  dialog.GRepeatIn.SetText("90");
  const std::string block =
      "# Living room\r\nGPROTO= 0\r\nSENDPLS= 560\r\nREPEAT= 40\r\nBITG= 1100\r\nBIT0= 10\r\nBIT1= 1000\r\n"
      "GREPEAT= 40";
  EXPECT_EQ(Save(true), Texts{"The new parameters of the selected protocol are:\r\n" + block +
                              "\r\n\r\nDo you want to save it?"});
  EXPECT_EQ(File(), kGeneral + "[Mine]\r\n" + block + "\r\n\r\nG1010,POWER\r\nG1100,MUTE\r\n\r\n" + kOther +
                        kTemplate);
  EXPECT_EQ(form_->SendCmd.Entries(), (Texts{"POWER", "MUTE"}));
  Edit("TV");
  EXPECT_NE(Save()[0].find("Do you want to save it?"), std::string::npos) << "only new names need 3 letters";
  Cancel();
  form_->UndoMenu.Click();
  EXPECT_EQ(File(), Replaced(kBefore, "PROTOCOL= 0", "PROTOCOL= 1")) << "with what was selected since";
}

TEST_F(ProtocolFlow, CancelRestoresTheSelectionAndKeepsARecordedCode) {
  for (int press = 0; press < 2; ++press) Record(Frames(NecRuns(kNecDigits), 2));
  const Texts recorded = {form_->CodeStr.Text(), form_->SendPulse.Text(), CodeColour()};
  ASSERT_EQ(recorded[2], "green");
  form_->TestCheck.SetChecked(true);
  for (const bool isNew : {true, false}) {
    NewProtocol& dialog = isNew ? New() : Edit("Mine");
    line_.Calls.clear();
    form_->Timer1.Tick();
    EXPECT_EQ(line_.Calls, Texts{}) << "nothing is sent while the dialog is open";
    dialog.SendPlsIn.SetText("none");
    EXPECT_EQ(Save(), Texts{"SENDPLS must have an integer value greater than 0"});
    EXPECT_EQ(mod_->ProtocolParams.SENDPLS, 0);
    Cancel();
    EXPECT_EQ(form_->ProtocolDialog(), nullptr);
    EXPECT_EQ(mod_->Store.CurProtocol + std::to_string(mod_->ProtocolParams.SENDPLS), "Mine560");
    EXPECT_EQ((Texts{form_->CodeStr.Text(), form_->SendPulse.Text(), CodeColour()}), recorded);
    EXPECT_TRUE(form_->Timer1.Enabled());
  }
  EXPECT_EQ(File(), kBefore);
  Edit("Mine");
  form_->FileExit.Click();
  EXPECT_EQ(form_->ProtocolDialog(), nullptr);
}

TEST_F(ProtocolFlow, RefusesVirtualProtocolsAndADamagedSection) {
  const std::string isVirtual = "Recorded is a virtual protocol used to test new commands before save.";
  for (const auto& [protocol, reported] :
       {std::pair<std::string, Texts>{
            "Template",
            {"The Template protocol cannot be edited", "The Template protocol cannot be deleted"}},
        {"Recorded", {isVirtual, isVirtual}}}) {
    form_->Protocol.SelectText(protocol);
    form_->EditMenu.Click();
    form_->ProtoDeleteMenu.Click();
    EXPECT_EQ(boxes_.TakeShown(), reported);
  }
  form_->Protocol.SelectText("Mine");
  std::string shown;
  form_->OnProtocolDialog = [&] { shown += form_->ProtocolDialog() != nullptr ? "dialog " : "window "; };
  mod_->Store.CfgText = kGeneral + Replaced(kMine, "GREPEAT= 72", "GREPEAT= ??") + kOther + "[END]\r\n";
  form_->EditMenu.Click();
  form_->FileNewMenu.Click();
  const std::string reported = "Error in the configuration file\r\nThe Protocol Form can not be opened";
  EXPECT_EQ(boxes_.TakeShown(), (Texts{reported, reported}));
  EXPECT_EQ(shown, "dialog window dialog window ");
  EXPECT_EQ(mod_->Store.CurProtocol, "Mine");
}

TEST_F(ProtocolFlow, SavingATextWithoutSettingsIsReportedAndAddsNoSection) {
  New();
  mod_->Store.CfgText.replace(1, 7, "Genera1");
  EXPECT_EQ(Save(true).back(), "Error in the configuration file");
  ExpectPart(File(), "[NewProtocol]");
  EXPECT_EQ(form_->Protocol.Count(), 0);
  EXPECT_EQ(Save(true), Texts{"The new protocol name is in use"});
}

TEST_F(ProtocolFlow, DeletingAProtocolDeletesItsCommandsAndUndoRestoresThem) {
  boxes_.Yes = false;
  form_->Protocol.Select(1);
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(boxes_.TakeShown(),
            Texts{"Do you want to delete the protocol TV from the current configuration file?"});
  boxes_.Yes = true;
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(form_->Protocol.Text(), "Mine");
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(File(), kGeneral + kTemplate);
  EXPECT_EQ(form_->Protocol.Entries(), (Texts{"Template", "Recorded"}));
  form_->UndoMenu.Click();
  EXPECT_EQ(File(), kGeneral + kMine + kTemplate);
  EXPECT_EQ(form_->Protocol.Text() + " " + form_->SendCmd.Text(), "Mine POWER");

  Open(kGeneral + kOther + kMine + Protocol("mine", {"G10,EMPTY"}) + kTemplate);
  form_->Protocol.SelectText("Mine");
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(form_->Protocol.Text(), "Mine") << "what is refused selects nothing";
  Edit("Mine").SendPlsIn.SetText("777");
  Save(true);
  form_->UndoMenu.Click();
  EXPECT_EQ(form_->SendPulse.Text(), "560");
}

}  // namespace
}  // namespace keplo::tests
