#include "shell_fixture.h"

namespace keplo::tests {
namespace {

/// Dispatches codes against a file and rows that a test sets up.
class Dispatch : public ::testing::Test {
 protected:
  std::string cfgText_ = Config(Protocol("NEC", {"G1010101010101,POWER", "G11110000111100001111,UP"}));
  Settings settings_{.BeepOn = true};
  ui::ListView list_;
  FakeLine line_;

  void Row(const std::string& id, const std::string& reference, bool activated = true, int zone = 0) {
    const int row = list_.Add();
    list_.SetText(row, 2, reference);
    list_.SetText(row, 3, activated ? "True" : "False");
    list_.SetText(row, 4, std::to_string(zone));
    list_.SetText(row, 5, id);
  }

  DispatchEnd Run(const std::string& code) {
    line_.Calls.clear();
    HostInputEvent event;
    DispatchReport report;
    DispatchCode(
        code, Analysis::First, cfgText_, settings_, list_, line_, event,
        [&](HostInputEvent& raised) {
          line_.Calls.push_back(raised.EventID + " " + std::get<std::string>(raised.EventCommand));
        },
        report);
    return report.Ended;
  }
};

TEST_F(Dispatch, RaisesEveryActivatedRowInListOrderOrBeepsAgain) {
  Row("2", "NEC&POWER", false);
  EXPECT_EQ(Run("1010101010101"), DispatchEnd::Walked);
  EXPECT_EQ(line_.Calls, (Texts{"SpeakBeep 5000 50"})) << "a command without an event";
  Row("1", "NEC&POWER");
  Row("3", "nec&POWER");
  Row("4", "NEC&UP");
  Row("5", "NEC&POWER");
  EXPECT_EQ(Run("1010101010101"), DispatchEnd::Walked);
  EXPECT_EQ(line_.Calls, (Texts{"SpeakBeep 1000 50", "1 NEC&POWER", "uDelay 200000", "SpeakBeep 1000 50",
                                "5 NEC&POWER", "uDelay 200000"}));
  settings_.BeepOn = false;
  Run("1010101010101");
  EXPECT_EQ(line_.Calls, (Texts{"1 NEC&POWER", "uDelay 200000", "5 NEC&POWER", "uDelay 200000"}));
}

TEST_F(Dispatch, IgnoresSettingsAndTheHeaderOfTheFile) {
  Row("1", "General&POWER");
  Row("2", "NEC&NEAR");
  cfgText_.insert(cfgText_.find("VEXIL="), std::string(120, '#') + "\r\nG1110000,POWER\r\n");
  EXPECT_EQ(Run("1110000"), DispatchEnd::NotStored);

  const std::string head = "[General]\r\n[NEC]\r\n", code = "1110011";
  for (const auto& [next, ended] : {std::pair{100, DispatchEnd::NotStored}, {101, DispatchEnd::Walked}}) {
    const std::size_t padding = static_cast<std::size_t>(next - 1) - head.size() - code.size() - 1;
    cfgText_ = head + std::string(padding, '#') + "G" + code + ",NEAR\r\n";
    EXPECT_EQ(Run(code), ended) << "a match that ends at " << next;
  }
}

TEST_F(Dispatch, NeverRaisesForASectionOrCommandWithoutAName) {
  Row("1", "&POWER");
  Row("2", "NEC&");
  cfgText_ += "[]\r\nG0001110001,POWER\r\n[NEC]\r\nG0001110002, \r\n";
  EXPECT_EQ(Run("0001110001"), DispatchEnd::NotStored);
  EXPECT_EQ(Run("0001110002"), DispatchEnd::NotStored);
}

TEST_F(Dispatch, AsksForTheZoneOnlyIfARowHasOne) {
  Row("1", "NEC&POWER", true, 0);
  Row("3", "NEC&POWER", true, 3);
  settings_.BeepOn = false;
  Run("1010101010101");
  EXPECT_EQ(line_.Calls, (Texts{"1 NEC&POWER", "uDelay 200000", "3 NEC&POWER", "uDelay 200000"}))
      << "without zone hardware any zone will do";

  settings_.VexilMode = 1;
  line_.Answers = {'x'};
  line_.Zones = [](char) -> std::int16_t { return 3; };
  EXPECT_EQ(Run("1010101010101"), DispatchEnd::Walked);
  EXPECT_EQ(line_.Calls, (Texts{"1 NEC&POWER", "uDelay 200000", "SetMode 2", "SendChr 80", "ReadChr",
                                "CheckZone 120", "SetMode 1", "3 NEC&POWER", "uDelay 200000"}));
}

TEST_F(Dispatch, EndsAtTheFirstRowOfAnotherZone) {
  Row("3", "NEC&POWER", true, 3);
  Row("2", "NEC&POWER", true, 2);
  settings_.VexilMode = 1;
  line_.Answers = {'x'};
  line_.Zones = [](char) -> std::int16_t { return 2; };
  EXPECT_EQ(Run("1010101010101"), DispatchEnd::OtherZone);
  EXPECT_EQ(line_.Calls.back(), "SetMode 1") << "no event, no second beep";

  line_.Answers.clear();
  EXPECT_EQ(Run("1010101010101"), DispatchEnd::NoZoneAnswer);
  EXPECT_EQ(line_.Calls.back(), "SetMode 1");
}

}  // namespace
}  // namespace keplo::tests
