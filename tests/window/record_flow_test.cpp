#include <gtest/gtest.h>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

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
  const auto sony20 = Frames(SonyRuns("10100010001011000000"), 2);
  for (const auto& [press, code, fields, colour] :
       std::vector<std::tuple<std::vector<int>, std::string, std::string, std::string>>{
           {Rc5Runs(kRc5Digits), kRc5Code, "14|0|Y|RC5|5|76|1|RC5 params|", "green"},
           {Frames(NecRuns(kNecDigits), 2), kNecDigits, "32|2|Y|NEC|||N|NEC params|", "green"},
           {Frames(SonyRuns("001000100010"), 3), "001000100010", "12|2|Y|SONY|8|68|N|SONY params|", "green"},
           {sony20, "10100010001011000000", "20|2|Y|SONY|||N|SONY params|", "green"},
           {NecRuns(kNecDigits), kNecDigits, "32|1|N|NEC|||N|NEC params|", "red"}}) {
    Record(press);
    EXPECT_EQ(Fields(), fields);
    EXPECT_EQ(form_->CodeStr.Text() + CodeColour(), "G" + code + colour) << fields;
    EXPECT_EQ(form_->ToggleVal.Visible(), code == kRc5Code);
    EXPECT_EQ(form_->GProt.BackColour(), ui::kGreen);
  }
  EXPECT_EQ(form_->SendPulse.Text() + form_->plen1.Text().substr(0, 10) + form_->plen0.Text().substr(0, 9),
            "550-160-10-11-80-10-11");
  mod_->Settings.Analysis = Analysis::Second;
  Record(sony20);
  EXPECT_EQ(Fields(), "20|2|Y|SONY|8.3|69|N|SONY params|");
}

/// Runs that are of no line code: a leader and spaces of three lengths.
std::vector<int> RawRuns(const std::string& spaces) {
  std::vector<int> runs = {60, 30};
  for (const char space : spaces) runs.insert(runs.end(), {8, 8 + 12 * (space - '0')});
  runs.push_back(8);
  return runs;
}

TEST_F(RecordFlow, UnreadableSignalsAreLearnedAndSentAsLengths) {
  mod_->Settings.Analysis = Analysis::Second;
  const std::string cool = "01202110220120110212", heat = "01202110220120110211";
  Record(RawRuns(cool));
  const std::string code = form_->CodeStr.Text();
  EXPECT_EQ(form_->GProt.Text() + CodeColour(), "RAWred");
  Record(RawRuns(cool));
  EXPECT_EQ(form_->CodeStr.Text() + CodeColour(), code + "green") << "drawn once";
  boxes_.Names = {"COOL"};
  form_->SaveCmdButton.Click();
  Record(RawRuns(heat));
  EXPECT_EQ(form_->IRCommand.Text() + CodeColour(), "?red") << "another key";
  Record(RawRuns(cool));
  EXPECT_EQ(form_->IRCommand.Text() + CodeColour() + form_->SendCmd.Text(), "Mine&&COOLplainCOOL");
  form_->SendButton.Click();
  EXPECT_EQ(mod_->Signal.SampleBits().substr(0, 98), Runs({60, 30, 8}));
  for (int turns = 0; turns < 2; ++turns) {
    for (const std::string& key : {heat, heat.substr(0, 18) + "00"}) Record(RawRuns(key));
  }
  EXPECT_EQ(CodeColour() + form_->Note.Text().substr(0, 28), "greenThe remote sends two signals");
  form_->DeleteCmdButton.Click();
  EXPECT_EQ(disk_.Files().count("Mine.mode2"), 0U) << "lengths go with the command";
  for (const int digits : {100, 200}) {
    Record(NecRuns(std::string(static_cast<std::size_t>(digits - 50), '0') + std::string(50, '1')));
    EXPECT_EQ(form_->GProt.Text(), digits == 100 ? "NEC" : "RAW") << "the monitor captures 224 ms";
  }
}

TEST_F(RecordFlow, AKnownCommandIsNamedAndSelected) {
  form_->Protocol.SelectText("Recorded");
  line_.Calls.clear();
  bool enabled = true;
  line_.WhileRecording = [&] { enabled = form_->RecButton.Enabled(); };
  Record(Frames(SonyRuns("101000100010"), 3));
  EXPECT_TRUE(!enabled && form_->RecButton.Enabled()) << "one recording at a time";
  EXPECT_EQ(form_->IRCommand.Text(), "Mine&&PLAY");
  EXPECT_EQ(form_->Protocol.Text() + " " + form_->SendCmd.Text(), "Mine PLAY");
  EXPECT_EQ(line_.Calls,
            (Texts{"DTR 0", "RTS -1", "SpeakBeep 5000 50", "RTS -1", "IRRecord limit 1000 1000 delay 10",
                   "SpeakBeep 2000 50", "SpeakBeep 5000 50"}));
}

TEST_F(RecordFlow, NewCodesAreValidatedByTwoEqualPresses) {
  const auto a = NecRuns(kNecDigits), b = NecRuns("11111111000000001110000000011111");
  const auto toggled = Rc5Runs(kRc5Digits, 1), again = Rc5Runs(kRc5Code, 1);
  const auto known = SonyRuns("101000100010"), repeated = Frames(SonyRuns("001000100010"), 3);
  const auto knownRepeated = Frames(known, 3);
  for (const auto& [presses, colours] : std::vector<std::pair<std::vector<std::vector<int>>, Texts>>{
           {{a, a, a}, {"red", "green", "green"}},
           {{a, b, b, b}, {"red", "red", "red", "green"}},
           {{toggled, again}, {"red", "green"}},
           {{a, known, a, a}, {"red", "plain", "red", "green"}},
           {{a, repeated, a}, {"red", "green", "red"}},
           {{a, knownRepeated, a}, {"red", "plain", "green"}}}) {
    SetUp();
    Texts shown;
    for (const auto& press : presses) {
      Record(press);
      shown.push_back(CodeColour());
      if (shown.back() != "plain") {
        EXPECT_EQ(line_.Calls.back(), shown.back() == "red" ? "SpeakBeep 2000 300" : "SpeakBeep 5000 50");
      }
    }
    EXPECT_EQ(shown, colours);
  }
}

TEST_F(RecordFlow, AKnownCodeCountsAsValidatedOnceItIsSeenWithoutRepeats) {
  const auto once = SonyRuns("101000100010"), held = Frames(once, 3);
  for (const auto& [press, refusal] : std::vector<std::pair<std::vector<int>, std::string>>{
           {held, "The command is not yet validated. Pres again Record button to validate"},
           {once, "This command exist as PLAY"},
           {held, "This command exist as PLAY"}}) {
    Record(press);
    form_->SaveCmdButton.Click();
    EXPECT_EQ(boxes_.TakeShown(), Texts{refusal});
  }
}

TEST_F(RecordFlow, FailedRecordingsAreExplained) {
  for (const auto& [press, reported, note] :  // none for silence; pulse, digits, repeats, line code, code
       std::vector<std::tuple<std::vector<int>, std::string, std::string>>{
           {{}, "560|||NEC|", "No signal came."},
           {Joined(NecRuns("100010"), Frames(NecRuns("100000"), 3)), "550|6|N||",
            "No code: a single frame of 6 bits is a fragment. Hold the key longer."},
           {std::vector<int>(60, 10), "495|||UNK|",
            "No code: it fits no line code. Move closer, shade the receiver from lamps; if other keys fail "
            "as "
            "well, choose AutoCalibrate."},
           {{4, 4}, "560|||NEC|", "No code: the signal is too short. Hold the key longer."}}) {
    SetUp();
    form_->DescribeLine = [] { return std::string("It is a fake."); };
    Record(NecRuns("10001010"));
    ASSERT_EQ(CodeColour(), "red") << "so that a colour that stays would show";
    form_->SendPulse.SetText("560");
    if (!press.empty()) line_.Captures.push_back(Padded(Bytes(Runs(press)), 1000));
    form_->RecButton.Click();
    EXPECT_EQ(form_->SendPulse.Text() + "|" + form_->BitNr.Text() + "|" + form_->Rpt.Text() + "|" +
                  form_->GProt.Text() + "|" + form_->CodeStr.Text(),
              reported);
    EXPECT_EQ(CodeColour(), press.size() == 2 ? "red" : "plain");
    ExpectPart(form_->Note.Text(), note + " It is a fake.");
    EXPECT_EQ(line_.Calls.back() == "SpeakBeep 600 1000", press.empty());
    EXPECT_TRUE(form_->RecButton.Enabled());
  }
}

TEST_F(RecordFlow, TheMouseReceiverIsPoweredAndTheZoneReadEvenInSilence) {
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

TEST_F(RecordFlow, ARecordingIsSavedAndOpenedAgain) {
  std::pair<std::string, double> kept;
  form_->Recordings.Save = [&](const std::string& capture, double sampleTime) {
    kept = {capture, sampleTime};
  };
  form_->SaveRecordingMenu.Click();
  EXPECT_EQ(boxes_.TakeShown(),
            Texts{"There is no recording to save. Press Record and a key of the remote first."});
  mod_->Settings.ProcDelay = 20;
  Record(Frames(SonyRuns("101000100010"), 3));
  mod_->Settings.ProcDelay = 30;  // later, and so none of this capture
  form_->SaveRecordingMenu.Click();
  EXPECT_EQ(kept.second, 60);

  SetUp();
  form_->TestCheck.SetChecked(true);
  const auto open = [&](const OpenedRecording& recording) {
    form_->Recordings.Open = [&](double, Analysis) { return recording; };
    form_->OpenRecordingMenu.Click();
  };
  open({"play.mode2", "a 1", kept.first, kept.second});
  EXPECT_EQ(form_->IRCommand.Text() + " " + form_->Note.Text(), "Mine&&PLAY Recording play.mode2");
  EXPECT_EQ(mod_->Signal.SampleTime, 60);
  EXPECT_FALSE(form_->Timer1.Enabled()) << "a loop would send over it";
  open({"x.cap", "b 1", Padded("\x10", 1000)});
  EXPECT_EQ(form_->Note.Text(), "Recording x.cap: No code: the signal is too short. Hold the key longer.");
  EXPECT_EQ(form_->Surface.Lines().size(), 2U) << "the one mark that it has";
  form_->Recordings.Open = [](double, Analysis) -> std::optional<OpenedRecording> {
    throw Failure(2, "no such file");
  };
  form_->OpenRecordingMenu.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"no such file"});

  const std::string once = Padded(Bytes(Runs(NecRuns(kNecDigits))), 1000);
  std::string colours;
  for (const char* place : {"c 1", "c 1", "c 2", "c 1"}) {
    open({"c.mode2", place, once});
    colours += CodeColour() + " ";
  }
  EXPECT_EQ(colours, "red red green green ") << "a press that is read again is no second one";
}

}  // namespace
}  // namespace keplo::tests
