#include "shell_fixture.h"
#include "signal/signal_builder.h"

namespace keplo::tests {
namespace {

class Tick : public ShellTest {
 protected:
  void SetUp() override {
    WriteConfig(Protocol("NEC", {"G" + kNecDigits + ",POWER"}));
    WriteEvents({{"17", "Lamp on", "", "NEC&POWER", true, 0}});
  }

  std::string Press(const std::string& digits) const { return Bytes(Runs(NecRuns(digits))); }
};

TEST_F(Tick, ReadsTheLineTwiceAtRestAndCapturesForTheReceiverKind) {
  Keplo& control = Start();
  line_.LogDcd = true;
  control.Timer1.Tick();
  EXPECT_EQ(line_.TakeCalls(), (Texts{"DCD"})) << "the standard receiver rests at 1";
  mod_->Settings.ReceiverKind = 1;
  line_.Rest = 0;
  control.Timer1.Tick();
  EXPECT_EQ(line_.TakeCalls(), (Texts{"DCD", "DCD"}));
  EXPECT_TRUE(control.Timer1.Enabled());
  mod_->Settings.ProcDelay = -3;
  line_.LogDcd = false;
  line_.Captures = {""};
  control.Timer1.Tick();
  EXPECT_EQ(line_.TakeCalls(), (Texts{"TXD 0", "RTS -1", "IRMonitorN 510 delay -3"}));
}

TEST_F(Tick, BeepsForEveryCaptureThatIsLongEnoughAndRaisesTheEventOfAPress) {
  Keplo& control = Start();
  line_.Captures = {std::string(510, '\xAA')};
  control.Timer1.Tick();
  EXPECT_EQ(line_.TakeCalls().back(), "SpeakBeep 5000 50");
  EXPECT_EQ(control.LastTick().Reading.Ended, Stage::NoTiming);

  line_.Captures = {Press(kNecDigits)};
  control.Timer1.Tick();
  EXPECT_EQ(line_.TakeCalls(), (Texts{"RTS -1", "IRMonitor 510 delay 10", "SpeakBeep 5000 50",
                                      "SpeakBeep 1000 50", "event 17", "uDelay 200000"}))
      << "nothing of the last capture is left in the buffer";
  mod_->Settings.BeepOn = false;
  line_.Captures = {Press(kNecDigits)};
  control.Timer1.Tick();
  EXPECT_EQ(line_.TakeCalls(), (Texts{"RTS -1", "IRMonitor 510 delay 10", "event 17", "uDelay 200000"}));
}

TEST_F(Tick, CompletesWhateverTheHostDoesInside) {
  // What the host does in an event, whether the timer is on then, and what is reported.
  const std::tuple<std::string, std::function<void(Keplo&)>, bool, std::string> cases[] = {
      {"runs an event loop of its own",
       [](Keplo& control) {
         control.InputStartMonitoring();
         control.Timer1.Tick();
       },
       true, ""},
      {"stops monitoring", [](Keplo& control) { control.InputStopMonitoring(); }, true, ""},
      {"terminates, so that a tick would read a closed port",
       [](Keplo& control) { control.InputTerminate(); }, false, ""},
      {"fails", [](Keplo&) { throw Failure(91, "the host stumbled"); }, true, "the host stumbled"},
      {"throws anything", [](Keplo&) { throw 7; }, true, "a failure without a text"},
  };
  std::filesystem::remove(folder_.Path() / "inputKeplo.mdb");
  WriteEvents({{"17", "Lamp on", "", "NEC&POWER", true, 0}, {"18", "Fan on", "", "NEC&POWER", true, 0}});
  for (const auto& [name, inEvent, timerIsOn, reported] : cases) {
    SCOPED_TRACE(name);
    Keplo& control = Start();
    raised_.clear();
    errors_.clear();
    line_.Captures = {Press(kNecDigits), Press(kNecDigits)};
    control.TriggerInputEvent = [&, inEvent = inEvent](HostInputEvent& event) {
      raised_.push_back(event.EventID);
      EXPECT_FALSE(raised_.size() == 1 && control.Timer1.Enabled());
      inEvent(control);
    };
    control.TriggerInputErrorCondition = [&](HostErrorRecord& record, bool&) {
      errors_.push_back(record.ErrorDescription);
      throw Failure(92, "and fell");
    };
    control.Timer1.Tick();
    EXPECT_EQ(raised_, (Texts{"17", "18"}));
    EXPECT_EQ(control.Timer1.Enabled(), timerIsOn);
    EXPECT_EQ(errors_, reported.empty() ? Texts{} : Texts(2, reported));
  }
}

TEST_F(Tick, ReportsEachPressOnceEvenIfTheHandlerFails) {
  Keplo& control = Start();
  std::string reported;
  control.OnPress = [&](const TickReport& tick) {
    reported += std::to_string(tick.Dispatched.Raised) + ";";
    throw Failure(5, "no paper");
  };
  line_.Captures = {Press(kNecDigits), "", Press(kNecDigits)};
  for (int tick = 0; tick < 5; ++tick) control.Timer1.Tick();
  EXPECT_EQ(reported, "1;0;1;");
  EXPECT_EQ(reported_, Texts(3, "no paper"));
  EXPECT_TRUE(control.Timer1.Enabled());
}

}  // namespace
}  // namespace keplo::tests
