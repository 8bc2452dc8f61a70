#include <gtest/gtest.h>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

const std::string kNecDigits = "00000000111111110110100010010111";
const std::string kRc5Digits = "11100101001100";  // address 5, command 12, toggle 1
const std::string kRc5Code = "11000101001100";

class RecordFlow : public WindowTest {
 protected:
  void SetUp() override { Open(Config(Protocol("Mine", {"G101000100010,PLAY"}))); }

  /// BitNr, GType, Rpt, GProt, AddrVal, CmdVal, ToggleVal and the frame's caption, as the user reads them.
  std::string Fields() const {
    std::string fields;
    for (const ui::Label* field : {&form_->BitNr, &form_->GType, &form_->Rpt, &form_->GProt, &form_->AddrVal,
                                   &form_->CmdVal, &form_->ToggleVal, &form_->Frame1}) {
      fields += field->Text() + "|";
    }
    return fields;
  }
};

TEST_F(RecordFlow, EveryLineCodeIsExplained) {
  Record(NecRuns(kNecDigits));
  EXPECT_EQ(Fields(), "32|1|N|NEC|||N|NEC params|");
  EXPECT_EQ(form_->CodeStr.Text(), "G" + kNecDigits);
  EXPECT_EQ(form_->SendPulse.Text(), "550");
  EXPECT_EQ(form_->plen1.Text().substr(0, 10), "-160-10-11");
  EXPECT_EQ(form_->plen0.Text().substr(0, 9), "-80-10-11");
  EXPECT_FALSE(form_->ToggleVal.Visible());

  Record(Frames(SonyRuns("001000100010"), 3));
  EXPECT_EQ(Fields(), "12|2|Y|SONY|8|68|N|SONY params|");
  EXPECT_EQ(form_->GProt.BackColour(), ui::kGreen);
  EXPECT_EQ(CodeColour(), "green");

  Record(Rc5Runs(kRc5Digits));
  EXPECT_EQ(Fields(), "14|0|Y|RC5|5|76|1|RC5 params|");
  EXPECT_EQ(form_->CodeStr.Text(), "G" + kRc5Code);
  EXPECT_TRUE(form_->ToggleVal.Visible());
}

TEST_F(RecordFlow, TheSecondLookTellsTheNumbersOfSonysTwentyDigits) {
  const auto press = Frames(SonyRuns("10100010001011000000"), 2);
  Record(press);
  EXPECT_EQ(Fields(), "20|2|Y|SONY|||N|SONY params|");
  mod_->Settings.Analysis = Analysis::Second;
  Record(press);
  EXPECT_EQ(Fields(), "20|2|Y|SONY|8.3|69|N|SONY params|");
}

TEST_F(RecordFlow, AKnownCommandIsNamedAndSelected) {
  form_->Protocol.SelectText("Recorded");
  line_.Calls.clear();
  Record(Frames(SonyRuns("101000100010"), 3));
  EXPECT_EQ(form_->IRCommand.Text(), "Mine&&PLAY");
  EXPECT_EQ(form_->Protocol.Text() + " " + form_->SendCmd.Text(), "Mine PLAY");
  EXPECT_EQ(form_->SendPulse.Text(), "560");
  EXPECT_EQ(line_.Calls,
            (Texts{"DTR 0", "RTS -1", "SpeakBeep 5000 50", "RTS -1", "IRRecord limit 1000 1000 delay 10",
                   "SpeakBeep 2000 50", "SpeakBeep 5000 50"}));
}

TEST_F(RecordFlow, NewCodesAreValidatedByTwoEqualPresses) {
  const auto a = NecRuns(kNecDigits);
  const auto b = NecRuns("11111111000000001110000000011111");
  const auto toggled = Rc5Runs(kRc5Digits, 1), again = Rc5Runs(kRc5Code, 1);
  const auto known = SonyRuns("101000100010"), repeated = Frames(SonyRuns("001000100010"), 3);
  const auto knownRepeated = Frames(known, 3);
  const std::vector<std::pair<std::vector<std::vector<int>>, Texts>> stories = {
      {{a, a, a}, {"red", "green", "green"}},      {{a, b, b, b}, {"red", "red", "red", "green"}},
      {{toggled, again}, {"red", "green"}},        {{a, known, a, a}, {"red", "plain", "red", "green"}},
      {{a, repeated, a}, {"red", "green", "red"}}, {{a, knownRepeated, a}, {"red", "plain", "green"}},
  };
  for (const auto& [presses, colours] : stories) {
    SCOPED_TRACE(testing::PrintToString(colours));
    SetUp();
    Texts shown;
    for (const auto& press : presses) {
      Record(press);
      shown.push_back(CodeColour());
    }
    EXPECT_EQ(shown, colours);
  }
}

TEST_F(RecordFlow, NewCodesAreToldByTheirBeep) {
  Record(NecRuns(kNecDigits));
  EXPECT_EQ(line_.TakeCalls().back(), "SpeakBeep 2000 300");
  Record(NecRuns(kNecDigits));
  EXPECT_EQ(line_.TakeCalls().back(), "SpeakBeep 5000 50");
}

TEST_F(RecordFlow, AKnownCodeCountsAsValidatedOnceItIsSeenWithoutRepeats) {
  const auto once = SonyRuns("101000100010"), held = Frames(once, 3);
  const std::vector<std::pair<std::vector<int>, std::string>> presses = {
      {held, "The command is not yet validated. Pres again Record button to validate"},
      {once, "This command exist as PLAY"},
      {held, "This command exist as PLAY"},
  };
  for (const auto& [press, refusal] : presses) {
    Record(press);
    EXPECT_EQ(CodeColour(), "plain");
    form_->SaveCmdButton.Click();
    EXPECT_EQ(boxes_.TakeShown(), Texts{refusal});
  }
}

TEST_F(RecordFlow, WhatAnEarlierPressLeftIsTakenBackOrStays) {
  Record(Rc5Runs(kRc5Digits));
  EXPECT_EQ(form_->GType.Text(), "0");
  Record(NecRuns(kNecDigits));
  EXPECT_FALSE(form_->ToggleVal.Visible());
  EXPECT_EQ(form_->GType.Text(), "1");
  Record(Frames(NecRuns(kNecDigits), 2));
  EXPECT_EQ(form_->GType.Text(), "2");
  Record(Joined(SonyRuns("101000"), SonyRuns("100010")));  // a fragment has no sync type
  EXPECT_EQ(form_->BitNr.Text() + form_->GType.Text(), "62");
}

TEST_F(RecordFlow, ASecondRecordingHasToWaitForTheFirst) {
  bool enabled = true;
  line_.WhileRecording = [&] { enabled = form_->RecButton.Enabled(); };
  Record(NecRuns(kNecDigits));
  EXPECT_FALSE(enabled);
  EXPECT_TRUE(form_->RecButton.Enabled());
}

TEST_F(RecordFlow, WhatIsNoCommandIsToldByFieldsAndBeeps) {
  Record(NecRuns(kNecDigits));  // red, so that a colour that stays would show
  line_.Calls.clear();
  form_->RecButton.Click();
  EXPECT_EQ(line_.TakeCalls().back(), "SpeakBeep 600 1000");
  EXPECT_EQ(CodeColour(), "plain");
  EXPECT_EQ(form_->CodeStr.Text() + form_->BitNr.Text() + form_->plen1.Text(), "");

  Record(NecRuns("10001010"));
  ASSERT_EQ(CodeColour(), "red");
  Record(Joined(NecRuns("100010"), Frames(NecRuns("100000"), 3)));
  EXPECT_EQ(CodeColour(), "plain");
  EXPECT_EQ(form_->BitNr.Text() + form_->Rpt.Text() + form_->GProt.Text(), "6N");
  EXPECT_EQ(form_->GProt.BackColour(), ui::kRed);
  EXPECT_EQ(form_->CodeStr.Text(), "");

  Record(Frames(NecRuns("100010"), 4));
  EXPECT_EQ(form_->CodeStr.Text(), "G100010");

  Record(NecRuns("10001010"));
  ASSERT_EQ(CodeColour(), "red");
  Record(std::vector<int>(60, 10));
  EXPECT_EQ(form_->GProt.Text() + form_->SendPulse.Text() + form_->CodeStr.Text(), "UNK495");
  EXPECT_EQ(form_->GProt.BackColour(), ui::kRed);
  EXPECT_EQ(CodeColour(), "plain");

  line_.Captures.push_back(Padded(Bytes("11110000"), 1000));
  form_->RecButton.Click();
  EXPECT_EQ(form_->CodeStr.Text(), "");
  EXPECT_TRUE(form_->RecButton.Enabled());
}

TEST_F(RecordFlow, TheMouseReceiverIsPoweredAndTheZoneAskedEvenInSilence) {
  mod_->Settings.ReceiverKind = 1;
  mod_->Settings.BeepOn = false;
  form_->VexilCheckbox.SetChecked(true);
  line_.Calls.clear();
  line_.Answers = {'a'};
  line_.Zones = [](char) -> std::int16_t { return 3; };
  form_->RecButton.Click();
  EXPECT_EQ(line_.TakeCalls(),
            (Texts{"DTR 0", "RTS -1", "TXD 0", "RTS -1", "DTR -1", "IRRecordN limit 1000 1000 delay 10",
                   "SetMode 2", "SendChr 80", "ReadChr", "CheckZone 97", "SetMode 1"}));
  EXPECT_EQ(form_->ZoneNr.Text(), "3");
  form_->RecButton.Click();
  EXPECT_EQ(form_->ZoneNr.Text(), "?");
}

}  // namespace
}  // namespace keplo::tests
