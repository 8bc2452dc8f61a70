#include <gtest/gtest.h>

#include <algorithm>

#include "signal/sample_bits.h"
#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

class SendFlow : public WindowTest {
 protected:
  void SetUp() override { Open(Config(Protocol("Mine", {"G1010010110100101,PLAY"}))); }

  bool Sends() {
    line_.Sent.clear();
    form_->SendButton.Click();
    return !line_.Sent.empty();
  }
  bool TickSends() {
    line_.Sent.clear();
    form_->Timer1.Tick();
    return !line_.Sent.empty();
  }
};

TEST_F(SendFlow, AStoredCommandIsSentBetweenTwoBeepsAndDrawn) {
  form_->DescribeLine = [] { return std::string("It goes nowhere."); };
  form_->SendButton.Click();
  EXPECT_EQ(form_->Note.Text(), "It goes nowhere.");
  line_.WhileSending = [&] { form_->Note.SetText("No device."); };
  for (const char* note : {"No device. It goes nowhere.", "It goes nowhere."}) {
    form_->SendButton.Click();
    EXPECT_EQ(form_->Note.Text(), note);
    line_.WhileSending = [] {};
  }
  SetUp();
  form_->SendButton.Click();
  EXPECT_EQ(line_.Calls, (Texts{"DTR 0", "RTS -1", "SpeakBeep 5000 50", "IRSend 54 pulse 560 interface 0",
                                "SpeakBeep 2000 50"}));
  EXPECT_EQ(line_.Carrier, 38'000);
  // Sync 1100, then 1000 for a 1 and 10 for a 0.
  EXPECT_EQ(SamplesToBits(line_.Sent).substr(0, 16), "1100100010100010");
  EXPECT_EQ(form_->Rpt.Text() + form_->GType.Text() + form_->GProt.Text(), "N2NEC");
  EXPECT_EQ(form_->IRCommand.Text() + " " + form_->BitNr.Text(), "Mine / PLAY 16");
  // Ten samples a slot.
  EXPECT_EQ(mod_->Signal.SampleBits().substr(0, 41), std::string(20, '1') + std::string(20, '0') + "1");
  EXPECT_EQ(form_->HScroll1.Value(), 15);
  EXPECT_TRUE(form_->SendButton.Enabled());

  SetUp();
  form_->SendPulse.SetText("");
  form_->SendButton.Click();
  EXPECT_EQ(line_.Calls[3], "IRSend 54 pulse 0 interface 0");
  EXPECT_TRUE(form_->Surface.Points().empty());
  SetUp();
  form_->MinButton.Click();
  EXPECT_TRUE(Sends() && form_->Surface.Points().empty()) << "the small window has no room for a trace";
  EXPECT_EQ(form_->Title(), "Keplo Send v" + VersionText);
  form_->MinButton.Click();
  EXPECT_EQ(form_->Title(), "Orlo's Keplo v" + VersionText);
}

TEST_F(SendFlow, OnlyDigitsOfACodeAreSent) {
  const std::string binary = "Error entering code: Please use only 1's and 0's for the code";
  for (const auto& [code, sends, shown] :
       std::vector<std::tuple<const char*, bool, Texts>>{{"", false, {}},
                                                         {"   ", false, {}},
                                                         {"G1010", false, {}},
                                                         {"G10101", true, {}},
                                                         {"X10101", true, {}},
                                                         {"G10a01", false, {binary}},
                                                         {"G1010 ", false, {binary}}}) {
    form_->CodeStr.SetText(code);
    EXPECT_EQ(Sends(), sends) << code;
    EXPECT_EQ(boxes_.TakeShown(), shown) << code;
  }
}

TEST_F(SendFlow, TheParametersOfTheProtocolAreShown) {
  form_->GType.SetText("?");
  form_->GProt.SetText("RC5");
  for (const auto& [repeat, gRepeat, kind, fields] : std::vector<std::tuple<int, int, int, std::string>>{
           {0, 0, kCustom, "N0RC5"},  // one of the user's own has no generic one to show
           {40, 1, kNec, "Y1NEC"},
           {40, 5, kSony, "Y1SONY"},
           {0, 11, kUnknown, "N2UNK"}}) {
    mod_->ProtocolParams.REPEAT = static_cast<std::int16_t>(repeat);
    mod_->ProtocolParams.GREPEAT = static_cast<std::int16_t>(gRepeat);
    mod_->Signal.Measured.ProtoKind = static_cast<std::int16_t>(kind);
    EXPECT_TRUE(Sends());
    EXPECT_EQ(form_->Rpt.Text() + form_->GType.Text() + form_->GProt.Text(), fields);
  }
}

TEST_F(SendFlow, ARecordingIsSentAsItWasMeasured) {
  form_->Protocol.SelectText("Recorded");
  EXPECT_FALSE(Sends());
  EXPECT_EQ(boxes_.TakeShown(), Texts{"Information about received command is not complete!"});
  Record(Rc5Runs("11100101001100"));
  // The first transmission carries the toggle digit 1, the second 0; the screen keeps its 0.
  for (const char* slots : {"0101011010011001101001011010", "0101101010011001101001011010"}) {
    ASSERT_TRUE(Sends());
    EXPECT_EQ(SamplesToBits(line_.Sent).substr(0, 28), slots);
  }
  EXPECT_EQ(form_->CodeStr.Text(), "G11000101001100");
  mod_->Signal.Measured.ProtoKind = kSony;
  for (const auto& [repeats, syncType, slots] :
       std::vector<std::tuple<const char*, const char*, std::string>>{
           {"N", "2", "0 50"}, {"N", "1", "0 1"}, {"y", "", "50 50"}, {" N ", " 0 ", "0 0"}}) {
    form_->Rpt.SetText(repeats);
    form_->GType.SetText(syncType);
    ASSERT_TRUE(Sends());
    const ProtocolParams& params = mod_->ProtocolParams;
    EXPECT_EQ(std::to_string(params.REPEAT) + " " + std::to_string(params.GREPEAT), slots);
    EXPECT_EQ(SamplesToBits(line_.Sent).substr(0, 10), "1111011011") << "SONY's sync and first two digits";
  }
  mod_->Signal.Measured.ProtoKind = kUnknown;
  EXPECT_FALSE(Sends());
  EXPECT_EQ(boxes_.TakeShown(), Texts{"You must first manually define a new protocol if UNKNOWN."});
}

TEST_F(SendFlow, NothingIsSentWithoutAZone) {
  form_->VexilCheckbox.SetChecked(true);
  form_->Zone.Select(2);
  line_.Answers = {'\x1A'};  // of zone 3: 1 01 1 010 without its first digit
  EXPECT_TRUE(Sends());
  EXPECT_EQ(form_->ZoneNr.Text(), "3");
  EXPECT_FALSE(Sends());
  EXPECT_EQ(form_->ZoneNr.Text(), "?");
  EXPECT_TRUE(form_->SendButton.Enabled());
  form_->CodeStr.SetText("G1010");
  line_.Calls.clear();
  EXPECT_FALSE(Sends());
  EXPECT_EQ(line_.Calls, (Texts{"DTR 0", "RTS -1"})) << "no zone for a code that is too short";
}

TEST_F(SendFlow, TheLoopSendsUntilRecordOrSendStopsIt) {
  const auto check = [this](bool checked) { form_->TestCheck.SetChecked(checked); };
  EXPECT_EQ(form_->Timer1.Interval, 1000);
  EXPECT_FALSE(TickSends());
  check(true);
  EXPECT_TRUE(TickSends() && TickSends());
  form_->RecButton.Click();
  form_->CodeStr.SetText("G1010010110100101");
  EXPECT_FALSE(TickSends());
  check(false);
  EXPECT_FALSE(TickSends());
  check(true);
  EXPECT_TRUE(TickSends());
  form_->SendButton.Click();
  EXPECT_FALSE(TickSends());
  // A refusal ends one round of the loop, not the loop.
  check(false);
  check(true);
  form_->CodeStr.SetBackColour(ui::kRed);
  EXPECT_FALSE(TickSends());
  form_->CodeStr.SetBackColour(std::nullopt);
  EXPECT_TRUE(TickSends());
}

}  // namespace
}  // namespace keplo::tests
