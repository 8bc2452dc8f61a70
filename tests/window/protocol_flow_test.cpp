#include <gtest/gtest.h>

#include "window/new_protocol.h"
#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

const std::string kMine = Protocol("Mine", {"G1010,POWER", "G1100,MUTE"});
const std::string kOther = Protocol("TV", {"G10,EMPTY"});
const std::string kTemplate = Protocol("Template", {"G10,EMPTY"});
const std::string kDigits = "00000000111111110110100010010111";

std::string General(const std::string& protocolIndex) {
  std::string general = kGeneral;
  return general.replace(general.find("PROTOCOL= 0") + 10, 1, protocolIndex);
}

class ProtocolFlow : public WindowTest {
 protected:
  ProtocolFlow() { Open(kGeneral + kMine + kOther + kTemplate + "[END]\r\n"); }

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

  /// Presses Save and tells what is shown; questions are answered with no unless told otherwise.
  Texts Save(bool yes = false) {
    boxes_.Yes = yes;
    Dialog().CreateButton.Click();
    return boxes_.TakeShown();
  }

  Texts Fields() {
    const NewProtocol& d = Dialog();
    return {d.CProtIn.Text(),   d.ProtDesc.Text(), d.GProtoIn.Text(), d.SendPlsIn.Text(), d.RepeatIn.Text(),
            d.GRepeatIn.Text(), d.BitGIn.Text(),   d.Bit0In.Text(),   d.Bit1In.Text()};
  }
};

TEST_F(ProtocolFlow, ANewProtocolStartsFromTheTemplateAndBecomesCurrent) {
  form_->Protocol.Select(1);
  NewProtocol& dialog = New();
  EXPECT_EQ(Fields(), (Texts{"NewProtocol", "", "NEC", " 560", " 0", "72", "1100", "10", "1000"}));
  EXPECT_TRUE(dialog.CProtIn.Enabled());
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
  EXPECT_EQ(File(), kGeneral + kMine + kOther + kTemplate + "[END]\r\n");

  Save(true);
  EXPECT_EQ(form_->ProtocolDialog(), nullptr);
  EXPECT_EQ(File(), General("2") + kMine + kOther + block.substr(2) + "\r\n" + kTemplate + "[END]\r\n");
  EXPECT_EQ(form_->Protocol.Entries(), (Texts{"Mine", "TV", "Lamp", "Template", "Recorded"}));
  EXPECT_EQ(form_->Protocol.Text(), "Lamp");
  EXPECT_EQ(mod_->Store.CurProtocol, "Lamp");
  EXPECT_EQ(mod_->ProtocolParams.REPEAT, 150);
  EXPECT_EQ(form_->SendPulse.Text(), " 850");
  EXPECT_EQ(form_->SendCmd.Entries(), Texts{"EMPTY"});
}

TEST_F(ProtocolFlow, EachGenericProtocolBringsItsPresets) {
  NewProtocol& dialog = New();
  const std::string sync = "111111111111111100000000";
  const std::vector<Texts> presets = {{"RC5", "850", "150", "0", "", "10", "01"},
                                      {"SONY", "550", "40", "40", "1111", "01", "011"},
                                      {"Custom", "550", "50", "1", sync, "10", "1000"},
                                      {"NEC", "550", "50", "1", sync, "10", "1000"}};
  for (const Texts& preset : presets) {
    dialog.GProtoIn.SelectText(preset[0]);
    const Texts fields = Fields();
    EXPECT_EQ(Texts(fields.begin() + 2, fields.end()), preset);
  }
}

TEST_F(ProtocolFlow, AnEditReplacesTheParametersAndLeavesTheCommands) {
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
                        kTemplate + "[END]\r\n");
  EXPECT_EQ(mod_->Store.CurProtocol, "Mine");
  EXPECT_EQ(form_->SendCmd.Entries(), (Texts{"POWER", "MUTE"}));
}

TEST_F(ProtocolFlow, CancelBringsBackWhatWasSelectedAndKeepsARecordedCode) {
  form_->Protocol.SelectText("Mine");
  for (int press = 0; press < 2; ++press) Record(Frames(NecRuns(kDigits), 2));
  const Texts recorded = {form_->CodeStr.Text(), form_->SendPulse.Text(), CodeColour()};
  ASSERT_EQ(recorded[2], "green");
  for (const bool isNew : {true, false}) {
    NewProtocol& dialog = isNew ? New() : Edit("Mine");
    dialog.SendPlsIn.SetText("none");
    EXPECT_EQ(Save(), Texts{"SENDPLS must have an integer value greater than 0"});
    EXPECT_EQ(mod_->ProtocolParams.SENDPLS, 0);
    dialog.CancelButton.Click();
    EXPECT_EQ(form_->ProtocolDialog(), nullptr);
    EXPECT_EQ(mod_->Store.CurProtocol, "Mine");
    EXPECT_EQ(mod_->ProtocolParams.SENDPLS, 560);
    EXPECT_EQ((Texts{form_->CodeStr.Text(), form_->SendPulse.Text(), CodeColour()}), recorded);
  }
  EXPECT_EQ(File(), kGeneral + kMine + kOther + kTemplate + "[END]\r\n");
}

TEST_F(ProtocolFlow, ARecordedCodeBringsWhatWasMeasured) {
  form_->Protocol.SelectText("Recorded");
  form_->CodeStr.SetText("G10");
  New();
  EXPECT_EQ(Fields()[0], "NewProtocol") << "without the number of digits the template counts";
  Dialog().CancelButton.Click();
  EXPECT_EQ(form_->CodeStr.Text(), "G10");
  ASSERT_EQ(form_->Protocol.Text(), "Recorded");

  Record(Frames(NecRuns(kDigits), 2));
  const std::string pulse = form_->SendPulse.Text(), code = form_->CodeStr.Text();
  ASSERT_FALSE(code.empty());
  New();
  EXPECT_EQ(Fields(), (Texts{"", "", "NEC", pulse, "50", "1", "111111111111111100000000", "10", "1000"}));
  Dialog().CProtIn.SetText("Lamp");
  Save();
  Dialog().CancelButton.Click();
  EXPECT_EQ(mod_->Store.CurProtocol, "Recorded");
  EXPECT_EQ(form_->Protocol.Text(), "Recorded");
  EXPECT_EQ(form_->CodeStr.Text(), code);
}

TEST_F(ProtocolFlow, ARecordedLineCodeBringsItsPresets) {
  form_->Protocol.SelectText("Recorded");
  form_->CodeStr.SetText("G1010");
  form_->BitNr.SetText("4");
  form_->SendPulse.SetText("600");
  constexpr std::int16_t kOtherKind = 7;
  const std::vector<std::pair<std::int16_t, Texts>> presets = {
      {kSony, {"SONY", "600", "50", "40", "1111", "01", "011"}},
      {kRc5, {"RC5", "600", "90", "0", "", "10", "01"}},
      {kUnknown, {"Custom", "600", "50", "1", "0110", "1", "0"}},
      {kOtherKind, {"", "600", "", "", "0110", "1", "0"}}};
  for (const auto& [kind, preset] : presets) {
    mod_->Signal.Measured.ProtoKind = kind;
    mod_->ProtocolParams = {1, 1, "1", "0", "0110", 1, ""};
    New();
    const Texts fields = Fields();
    EXPECT_EQ(Texts(fields.begin() + 2, fields.end()), preset);
    Dialog().CancelButton.Click();
  }
}

TEST_F(ProtocolFlow, TellsWhyItWillNotStartOrSave) {
  Edit("Mine").ProtDesc.SetText("a[b");
  EXPECT_EQ(Save(), Texts{"Description cannot contain \"[\" character!"});
  Dialog().CancelButton.Click();
  Edit("TV");
  EXPECT_NE(Save()[0].find("Do you want to save it?"), std::string::npos) << "only new names need 3 letters";
  Dialog().CancelButton.Click();
  New().CProtIn.SetText("mine");
  EXPECT_EQ(Save(), Texts{"The new protocol name is in use"});
  Dialog().CancelButton.Click();

  for (const auto& [protocol, edit, remove] :
       {std::array<std::string, 3>{"Template", "The Template protocol cannot be edited",
                                   "The Template protocol cannot be deleted"},
        {"Recorded", "Recorded is a virtual protocol used to test new commands before save.",
         "Recorded is a virtual protocol used to test new commands before save."}}) {
    form_->Protocol.SelectText(protocol);
    form_->EditMenu.Click();
    form_->ProtoDeleteMenu.Click();
    EXPECT_EQ(boxes_.TakeShown(), (Texts{edit, remove}));
    EXPECT_EQ(form_->ProtocolDialog(), nullptr);
  }
}

TEST_F(ProtocolFlow, RefusesADamagedSectionAndBringsTheWindowBack) {
  std::string shown;
  form_->OnProtocolDialog = [&] { shown += form_->ProtocolDialog() != nullptr ? "dialog " : "window "; };
  std::string damaged = kMine;
  damaged.replace(damaged.find("GREPEAT= 72"), 11, "GREPEAT= ??");
  mod_->Store.CfgText = kGeneral + damaged + kOther + "[END]\r\n";
  form_->EditMenu.Click();
  form_->FileNewMenu.Click();
  const std::string told = "Error in the configuration file\r\nThe Protocol Form can not be opened";
  EXPECT_EQ(boxes_.TakeShown(), (Texts{told, told}));
  EXPECT_EQ(shown, "dialog window dialog window ");
  EXPECT_EQ(mod_->Store.CurProtocol, "Mine");
}

TEST_F(ProtocolFlow, WhereverASaveFailsTheMessageFitsTheFile) {
  const std::string before = kGeneral + kMine + kOther + kTemplate + "[END]\r\n";
  const std::vector<std::function<void()>> changes = {[&] { New().CreateButton.Click(); },
                                                      [&] {
                                                        Edit("Mine").ProtDesc.SetText("Living room");
                                                        Dialog().CreateButton.Click();
                                                      },
                                                      [&] { form_->ProtoDeleteMenu.Click(); }};
  for (const auto& change : changes) {
    bool failed = true;
    for (int operation = 1; failed; ++operation) {
      Open(before);
      disk_.FailAt(operation, /*forGood=*/false);
      change();
      disk_.FailAt(0, /*forGood=*/false);
      const std::string told = boxes_.TakeShown().back();
      const bool kept = told.find("is as it was: operation") != std::string::npos;
      failed = kept || told.find("is saved, but") != std::string::npos;
      EXPECT_EQ(File() == before, kept) << told;
      EXPECT_EQ(mod_->Store.CfgText, File()) << told;
      EXPECT_EQ(form_->Protocol.ListIndex(), mod_->Settings.ProtocolIndex) << told;
    }
  }
}

TEST_F(ProtocolFlow, ASaveOfATextWithoutSettingsIsToldAndStoresNoSecondSection) {
  New();
  mod_->Store.CfgText.replace(1, 7, "Genera1");
  EXPECT_EQ(Save(true).back(), "Error in the configuration file");
  EXPECT_NE(File().find("[NewProtocol]"), std::string::npos);
  EXPECT_EQ(form_->Protocol.Count(), 0);
  EXPECT_EQ(Save(true), Texts{"The new protocol name is in use"});
}

TEST_F(ProtocolFlow, ADeletedProtocolTakesItsCommandsAlong) {
  form_->Protocol.SelectText("Mine");
  boxes_.Yes = false;
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(boxes_.TakeShown(),
            Texts{"Do you want to delete the protocol Mine from the current configuration file?"});
  EXPECT_EQ(form_->Protocol.Count(), 4);
  boxes_.Yes = true;
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(File(), kGeneral + kOther + kTemplate + "[END]\r\n");
  EXPECT_EQ(form_->Protocol.Text(), "TV");
  form_->ProtoDeleteMenu.Click();
  EXPECT_EQ(File(), kGeneral + kTemplate + "[END]\r\n");
  EXPECT_EQ(form_->Protocol.Entries(), (Texts{"Template", "Recorded"}));
  EXPECT_EQ(mod_->Store.CurProtocol, "Template");
}

TEST_F(ProtocolFlow, TheWindowSendsNothingBehindTheDialogAndTakesItAlongWhenItCloses) {
  form_->TestCheck.SetChecked(true);
  ASSERT_TRUE(form_->Timer1.Enabled());
  Edit("Mine");
  form_->Timer1.Tick();
  EXPECT_EQ(line_.Calls, Texts{});
  Dialog().CancelButton.Click();
  EXPECT_TRUE(form_->Timer1.Enabled());
  Edit("Mine");
  form_->FileExit.Click();
  EXPECT_EQ(form_->ProtocolDialog(), nullptr);
  EXPECT_FALSE(form_->Timer1.Enabled());
}

}  // namespace
}  // namespace keplo::tests
