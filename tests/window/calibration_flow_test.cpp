#include <gtest/gtest.h>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

const std::string kHoldTheKey =
    "Record a command: Keep the '1' button on the SONY remote pressed and click OK.\r\n"
    "Keep pressed till you will receive a message.";
const std::string kDelayTwo = "Calibration succeeded.\r\nPROCDELAY= 2";

class CalibrationFlow : public WindowTest {
 protected:
  void SetUp() override { Open(Config(Protocol("Mine", {"G101000100010,PLAY"}))); }

  /// A key is heard with these base times, one a capture, and then let go. 0 is
  /// a byte of noise, after which the buffer is as it was.
  void Calibrate(const std::vector<int>& baseTs) {
    for (const int t : baseTs) {
      std::vector<int> runs;
      for (int pair = 0; pair < 24; ++pair) runs.insert(runs.end(), 2, t + pair % 2);
      line_.Captures.push_back(t == 0 ? "\x01" : Padded(Bytes(Runs(runs)), 100));
    }
    form_->CalibrationMenu.Click();
  }
};

TEST_F(CalibrationFlow, FindsShowsAndSavesTheDelay) {
  mod_->Settings.BeepOn = false;
  mod_->Settings.ReceiverKind = 1;
  form_->Timer1.SetEnabled(true);
  form_->IRCommand.SetText("Mine&&PLAY");
  Texts notices;
  form_->OnWait = [&](std::string_view text) {
    notices.emplace_back(text.substr(0, text.find('.')));
    EXPECT_FALSE(form_->Timer1.Enabled());
    EXPECT_EQ(form_->SendPulse.Text(), "");
    form_->CalibrationMenu.Click();  // must not begin another one
  };
  std::string file = File();
  Calibrate({11, 10, 10, 9});
  Texts calls = {"RTS -1"};
  for (const std::string delay : {"0", "1", "2", "3"}) {
    const Texts measurement = {"SpeakBeep 5000 50", "IRRecord limit 100 150 delay " + delay,
                               "SpeakBeep 2000 50"};
    calls.insert(calls.end(), measurement.begin(), measurement.end());
  }
  calls.emplace_back("RTS 0");
  EXPECT_EQ(line_.Calls, calls);
  EXPECT_EQ(boxes_.Shown, (Texts{kHoldTheKey, kDelayTwo}));
  EXPECT_EQ(notices, (Texts{"Calibrating: delay 0", "Calibrating: delay 0, base time 11",
                            "Calibrating: delay 1, base time 10", "Calibrating: delay 2, base time 10",
                            "Calibrating: delay 3, base time 9", ""}));
  EXPECT_EQ(form_->ProcDelayparameter.Text() + form_->SendPulse.Text() + form_->IRCommand.Text(), " 2 495");
  EXPECT_EQ(File(), file.replace(file.find("PROCDELAY= 10"), 13, "PROCDELAY= 2"));
}

TEST_F(CalibrationFlow, CanBeCancelledAndRepeated) {
  form_->IRCommand.SetText("?");
  boxes_.Yes = false;
  Calibrate({});
  EXPECT_EQ(line_.TakeCalls(), Texts{"RTS 0"});
  EXPECT_EQ(form_->IRCommand.Text() + std::to_string(mod_->Settings.ProcDelay), "10");
  boxes_.Yes = true;
  boxes_.TakeShown();
  Calibrate({9});
  EXPECT_EQ(boxes_.TakeShown().size(), 2U);
}

TEST_F(CalibrationFlow, ReportsWhyNothingWasSaved) {
  const std::string noSignal = "Autocalibration aborted!\r\nNo IR command received.";
  for (const auto& [baseTs, reported, delay] : std::vector<std::tuple<std::vector<int>, std::string, int>>{
           {{11, 10, 0}, noSignal, 3},
           {{9}, "Your computer is to slow for this application!", 0},
           {std::vector<int>(72, 10), "Calibration procedure failed!", 71},
           {{11, 10, 10, 9}, kDelayTwo, 2}}) {
    const bool unsaved = reported == kDelayTwo;
    SetUp();
    const std::string before = File();
    form_->IRCommand.SetText("?");
    disk_.FailAt(1, true);
    Calibrate(baseTs);
    const Texts shown = boxes_.TakeShown();
    EXPECT_EQ(shown.back(), reported);
    ExpectPart(shown[shown.size() - 2], unsaved ? "The configuration was not saved" : kHoldTheKey);
    EXPECT_EQ(mod_->Settings.ProcDelay, delay) << reported;
    EXPECT_EQ(form_->ProcDelayparameter.Text(), unsaved ? " 2" : "10");
    EXPECT_EQ(form_->IRCommand.Text() + " " + line_.Calls.back(),
              reported == noSignal ? "? SpeakBeep 600 1000" : " RTS 0");
    EXPECT_EQ(File(), before);
    disk_.FailAt(0, false);
    form_->Form_Unload();
    EXPECT_EQ(File().find("PROCDELAY= 2") != std::string::npos, unsaved) << "the last save tries again";
  }
}

}  // namespace
}  // namespace keplo::tests
