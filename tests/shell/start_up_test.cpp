#include "shell_fixture.h"

namespace keplo::tests {
namespace {

class StartUp : public ShellTest {};

TEST_F(StartUp, OpensThePortAndFillsThePanel) {
  WriteConfig("", General("3 0 10 9 1 2"));
  Keplo& control = Create();
  EXPECT_EQ(line_.Calls, (Texts{"OpenCom 3", "RTS -1", "TXD 0", "SetMode 2"}));
  EXPECT_EQ(PanelText(control.Panel), "COM 3|AVAILABLE|NO|YES|IRMouse / TxD");
  EXPECT_EQ(control.Panel.CtlPortStatus.BackColour(), ui::kGreen);
  EXPECT_EQ(mod_->Settings.ReceiverKind, 1);
  EXPECT_FALSE(control.Timer1.Enabled());
  EXPECT_EQ(control.ListView1.Count(), 0);

  std::string columns;
  for (const ui::ListColumn& column : control.ListView1.Columns()) {
    columns += column.Heading + " " + std::to_string(column.Width) + "; ";
  }
  EXPECT_EQ(columns,
            "Event Name 2000; Event Description 2500; Infrared Command 2500; Activated 1000; Zone 600; "
            "EventID 1000; ");
  for (const auto& [size, width, height] : {std::tuple(6000, 5700, 4100), {100, 0, 0}}) {
    control.Resize(size, size);
    EXPECT_EQ(control.ListView1.Width, width);
    EXPECT_EQ(control.ListView1.Height, height);
    EXPECT_EQ(control.ListView1.Top, 2040);
  }
}

TEST_F(StartUp, ShowsEachInterfaceType) {
  const std::vector<std::tuple<std::string, int, std::string>> cases = {
      {"0", 0, "DCDStandard / DTR"}, {"1", 0, "DCDStandard / TxD"}, {"8", 1, "IRMouse / DTR"},
      {"9", 1, "IRMouse / TxD"},     {"5", 0, "InterfaceType"},     {"10", 1, "InterfaceType"}};
  for (const auto& [type, receiver, text] : cases) {
    WriteConfig("", General("1 0 10 " + type + " 1 0"));
    EXPECT_EQ(Create().Panel.InterfaceType.Text(), text) << type;
    EXPECT_EQ(mod_->Settings.ReceiverKind, receiver) << type;
  }
}

TEST_F(StartUp, ReloadsTheConfigurationOfAnotherProgram) {
  WriteEvents({});
  WriteConfig("");
  Keplo& control = Start();
  control.ApplyExternalChanges();
  WriteConfig(Protocol("NEC", {"G1010,POWER"}), General("1 0 10 8 1 2"));
  control.ApplyExternalChanges();
  EXPECT_EQ(control.Panel.VexilAvailable.Text() + " " + control.Panel.InterfaceType.Text(),
            "YES IRMouse / DTR");
  EXPECT_EQ(mod_->Settings.ReceiverKind, 1);
  EXPECT_NE(mod_->Store.CfgText.find("G1010,POWER"), std::string::npos);
  EXPECT_EQ(line_.TakeCalls(), Texts{"SetMode 2"}) << "the port stays open";

  WriteConfig("", General("4 0 10 0 1 0"));
  control.ApplyExternalChanges();
  EXPECT_EQ(line_.TakeCalls(), (Texts{"OpenCom 4", "RTS -1", "TXD 0"}));
  EXPECT_EQ(control.Panel.CtlComPort.Text(), "COM 4");
  folder_.Write("keplo.cfg", "cut short");
  for (int look = 0; look < 2; ++look) control.ApplyExternalChanges();
  EXPECT_EQ(errors_.size(), 1U) << "reported once";
  std::filesystem::remove(folder_.Path() / "keplo.cfg");
  for (int look = 0; look < 3; ++look) control.ApplyExternalChanges();
  EXPECT_EQ(errors_.size(), 2U) << "reported once as well";
  EXPECT_NE(mod_->Store.CfgText.find("COMPORT= 4"), std::string::npos);
  mod_->Store.CfgText = Config("", General("5 0 10 0 1 0"));  // not saved yet
  WriteConfig("", General("6 0 10 0 1 0"));
  for (int look = 0; look < 2; ++look) control.ApplyExternalChanges();
  EXPECT_EQ(errors_.size(), 3U) << "reported once as well";
}

TEST_F(StartUp, TriesThePortFiveTimes) {
  WriteConfig("");
  line_.OpenResults = {0, -1, 1};
  EXPECT_EQ(Create().Panel.CtlPortStatus.Text(), "AVAILABLE");
  EXPECT_EQ(line_.TakeCalls(), (Texts{"OpenCom 1", "uDelay 200000", "OpenCom 1", "uDelay 200000", "OpenCom 1",
                                      "RTS -1", "TXD 0"}));

  line_.OpenResults = {0, 0, 0, 0, 0, 1};
  Keplo& control = Create();
  EXPECT_EQ(control.Panel.CtlPortStatus.Text(), "UNAVAILABLE");
  EXPECT_EQ(control.Panel.CtlPortStatus.BackColour(), ui::kRed);
  EXPECT_EQ(std::count(line_.Calls.begin(), line_.Calls.end(), "uDelay 200000"), 5);
  EXPECT_EQ(line_.OpenResults.size(), 1U);
  control.InputStartMonitoring();
  EXPECT_EQ(control.Panel.CtlPortStatus.Text(), "AVAILABLE") << "a refresh does not test the port";
}

TEST_F(StartUp, LeavesThePortClosedUntilTheSettingsAreComplete) {
  WriteEvents({});
  for (const std::string key : {"ITYPE=", "[END]"}) {
    std::string config = Config("");
    folder_.Write("keplo.cfg", config.replace(config.find(key), 1, "X"));
    Keplo& control = Create();
    EXPECT_EQ(line_.TakeCalls(), Texts{});
    EXPECT_EQ(PanelText(control.Panel), "CtlComPort|CtlPortStatus|NO|VexilAvailable|InterfaceType");
    EXPECT_EQ(control.ListView1.Columns().size(), 6U);
    control.InputInitialise(nullptr);
    int opened = 0;
    control.OnPortOpened = [&] { ++opened; };
    WriteConfig("", General("1 0 10 0 1 1"));
    control.ApplyExternalChanges();
    EXPECT_EQ(line_.TakeCalls(), (Texts{"OpenCom 1", "RTS -1", "TXD 0", "SetMode 2"}));
    EXPECT_EQ(opened, 1);
  }
}

TEST_F(StartUp, StartsAndStopsMonitoring) {
  WriteConfig("");
  Keplo& control = Create();
  line_.Calls.clear();
  EXPECT_EQ(control.InputStartMonitoring(), 1);
  EXPECT_TRUE(control.InputMonitoring());
  EXPECT_TRUE(control.Timer1.Enabled());
  EXPECT_EQ(control.Panel.RcvActivated.Text(), "YES");
  EXPECT_EQ(line_.TakeCalls(), (Texts{"RTS -1", "TXD 0", "RTS -1"}));

  EXPECT_EQ(control.InputStopMonitoring(), 1);
  EXPECT_FALSE(control.InputMonitoring());
  EXPECT_FALSE(control.Timer1.Enabled());
  EXPECT_EQ(control.Panel.RcvActivated.Text(), "NO");
  EXPECT_EQ(line_.TakeCalls(), (Texts{"RTS -1", "TXD 0"}));

  EXPECT_EQ(control.InputTerminate(), 1);
  EXPECT_EQ(line_.TakeCalls(), (Texts{"CloseCom"}));
  EXPECT_EQ(control.InputErrorDetails(), nullptr);
}

TEST_F(StartUp, InitialisesFromTheEventMapOrFails) {
  WriteConfig("");
  EXPECT_EQ(Create().InputInitialise(nullptr), 0) << "there is no database";
  control_->EnableMenu_Click();  // there is no row
  EXPECT_EQ(errors_, Texts{});
  WriteEvents({{"17", "Lamp", "", "NEC&POWER", true, 0}});
  Keplo& control = Create();
  EXPECT_EQ(control.InputInitialise(nullptr), 1);
  EXPECT_EQ(control.ListView1.Text(1, 2), "NEC&POWER");
  control.EnableMenu_Click();  // no row is selected
  EXPECT_EQ(errors_.size(), 1U);
  std::filesystem::resize_file(folder_.Path() / "inputKeplo.mdb", 0);
  EXPECT_EQ(control.InputInitialise(nullptr), 0);
  EXPECT_NE(control.InitialiseFailure().find("inputKeplo.mdb"), std::string::npos)
      << control.InitialiseFailure();
}

}  // namespace
}  // namespace keplo::tests
