#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>

#include "config/cfg_store.h"
#include "config/read_settings.h"
#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

constexpr const char* kConfigError =
    "(error) There is an error in the configuration file.\r\nThe application will be closed.\r\n"
    "Please send a message to support@keplo.example for support.";

/// A file with two protocols.
std::string FileOf(const std::string& general) {
  return Config(Protocol("One", {"G1010101010101,PLAY"}) + Protocol("Two", {"G10,EMPTY"}), General(general));
}

class StartUp : public WindowTest {
 protected:
  void SetUp() override {
    line_.Opens = [this](std::int32_t port) {
      line_.Calls.pop_back();
      ++Probes;
      if (!Ports.contains(port) || --Ports[port] > 0) return false;
      line_.Calls.push_back("OpenCom " + std::to_string(port));
      return true;
    };
  }

  /// Brings the window up by itself, or over a text that the shell has loaded.
  bool Load(const std::string& file, int pluginMode = 0) {
    form_.reset();
    line_.Calls.clear();
    Probes = 0;
    disk_.Put("keplo.cfg", file);
    mod_ = std::make_unique<KeploMod>("/home", disk_);
    mod_->Settings.PluginMode = static_cast<std::int16_t>(pluginMode);
    if (pluginMode == 1) {
      LoadConfig(mod_->Store);
      ReadSettings(mod_->Store, mod_->Settings);
    }
    form_ = std::make_unique<Form1>(*mod_, line_, boxes_);
    return form_->Form_Load();
  }

  std::map<std::int32_t, int> Ports = {{2, 1}, {5, 1}};  // and at which attempt each opens
  int Probes = 0;
};

TEST_F(StartUp, FindsThePortsAndSelectsTheConfiguredOne) {
  using Case = std::tuple<std::string, std::map<std::int32_t, int>, Texts, Texts, std::string, int>;
  const Texts end = {"OpenCom 5", "RTS -1", "TXD 0"};
  for (const auto& [general, ports, calls, shown, chosen, probes] : std::vector<Case>{
           {"5 1 28 0 0 0",
            {{2, 1}, {5, 1}},
            {"OpenCom 2", "OpenCom 5", "OpenCom 5", "RTS -1", "RTS -1", "TXD 0", end[0], end[1], end[2]},
            {},
            "COM 5",
            28 * 3 + 2 + 2},
           {"9 1 28 0 0 0", {{2, 1}, {5, 1}}, {"OpenCom 2", end[0], end[1], end[2]}, {}, "", 28 * 3 + 2 + 1},
           {"5 1 28 0 0 0", {}, {}, {"There is no COM port available"}, "", 30 * 3}}) {
    Ports = ports;
    ASSERT_TRUE(Load(FileOf(general)));
    EXPECT_EQ(line_.Calls, calls);
    EXPECT_EQ(boxes_.TakeShown(), shown);
    EXPECT_EQ(form_->ComList.Text(), chosen);
    EXPECT_EQ(form_->ComList.Count(), static_cast<int>(ports.size()));
    EXPECT_EQ(Probes, probes);
    EXPECT_EQ(form_->Protocol.Text() + " " + form_->SendCmd.Text(), "Two EMPTY");
    EXPECT_EQ(form_->ProcDelayparameter.Text(), "28");
  }
}

TEST_F(StartUp, TheUsersChoiceIsColouredByItsFirstAttempt) {
  Ports = {{2, 1}, {5, 1}, {12, 1}};
  ASSERT_TRUE(Load(FileOf("2 0 10 0 0 0")));
  EXPECT_EQ(form_->ComList.Entries(), (Texts{"COM 2", "COM 5", "COM 12"}));
  const Texts settled = {"RTS -1", "RTS -1", "TXD 0"};
  const std::string wait = "uDelay 200000";
  constexpr int kNever = 99;
  for (const auto& [port, attempt, opening, colour] :
       std::vector<std::tuple<int, int, Texts, ui::Colour>>{{12, 1, {"OpenCom 12"}, ui::kGreen},
                                                            {5, 2, {wait, "OpenCom 5"}, ui::kRed},
                                                            {2, kNever, {wait, wait, wait}, ui::kRed}}) {
    Ports[port] = attempt;
    line_.Calls.clear();
    form_->ComList.SelectText("COM " + std::to_string(port));
    Texts calls = opening;
    calls.insert(calls.end(), settled.begin(), settled.end());
    EXPECT_EQ(line_.Calls, calls);
    EXPECT_EQ(form_->ComList.BackColour(), colour);
    ExpectPart(File(), "COMPORT= " + std::to_string(port) + "\r\n");
    EXPECT_EQ(mod_->Settings.ComPortNr, port);
  }
  EXPECT_TRUE(boxes_.Shown.empty());
}

TEST_F(StartUp, TheSettingsAreShownAndOnlyRealChangesAreSaved) {
  // The file before and after, calls between the ports and the end, and receiver, output, beep and zone.
  using Case = std::tuple<std::string, std::string, Texts, std::string>;
  const Texts beeps = {"SpeakBeep 5000 50", "SpeakBeep 2000 50", "SpeakBeep 5000 50"};
  for (const auto& [general, inFile, calls, shown] :
       std::vector<Case>{{"9 0 10 9 0 0", "9 0 10 9 0 0", {"SetMode 1"}, "IRMouse TxD "},
                         {"9 0 10 8 1 0", "9 0 10 8 1 0", beeps, "IRMouse Beep "},
                         {"9 0 10 0 2 0", "9 0 10 0 2 0", {}, "DCDStd "},
                         {"9 0 10 1 1 3",
                          "9 0 10 0 1 3",
                          {"SetMode 1", beeps[0], beeps[1], beeps[2], "SetMode 2"},
                          "DCDStd Beep 3"},
                         {"9 0 10 0 0.4 7.5", "9 0 10 0 0.4 8", {"SetMode 2"}, "DCDStd 8"},
                         {"9.9 0.9 10 0 0 0", "9.9 0 10 0 0 0", {}, "DCDStd "},
                         {"9 77 10 0 0 0", "9 77 10 0 0 0", {}, "DCDStd "}}) {
    ASSERT_TRUE(Load(FileOf(general))) << general;
    EXPECT_EQ(Texts(line_.Calls.begin() + 4, line_.Calls.end()), calls) << general;
    const bool zones = form_->VexilCheckbox.Checked();
    EXPECT_EQ(form_->ReceiverType.Text() + " " + (form_->TxDCheckBox.Checked() ? "TxD " : "") +
                  (form_->BeepCheckbox.Checked() ? "Beep " : "") + (zones ? form_->Zone.Text() : ""),
              shown)
        << general;
    EXPECT_EQ(form_->TxDCheckBox.Enabled(), !zones);
    form_->Form_Unload();
    EXPECT_EQ(File(), FileOf(inFile)) << general;
    EXPECT_EQ(line_.Calls.back(), "CloseCom");
  }
}

TEST_F(StartUp, AnUnusableFileIsReportedAndNeverWritten) {
  const std::string whole = FileOf("5 0 10 0 1 3");
  const auto without = [&](const std::string& text, const std::string& instead = "") {
    return Replaced(whole, text, instead);
  };
  const std::vector<std::tuple<std::string, bool, bool>> cases = {
      {whole, true, true},
      {without("[END]", "[End]"), false, false},
      {without("[END]\r\n"), false, false},
      {without("[General]"), false, false},
      {without("ITYPE= "), false, true},
      {without("COMPORT= 5\r\nPROTOCOL= 0", "PROTOCOL= 0\r\nCOMPORT= 5"), false, true},
      {"", false, false},
      {std::string(kMostCharacters + 1, 'x'), false, true},
  };
  for (const auto& [file, alone, byShell] : cases) {  // whether it comes up
    for (const int pluginMode : {0, 1}) {
      if (pluginMode == 1 && file.size() > kMostCharacters) continue;  // no shell has loaded it
      const bool comesUp = pluginMode == 1 ? byShell : alone;
      EXPECT_EQ(Load(file, pluginMode), comesUp) << pluginMode << file;
      EXPECT_EQ(boxes_.TakeShown(), comesUp ? Texts{} : Texts{kConfigError}) << pluginMode << file;
      EXPECT_EQ(form_->LoadFailure().empty(), comesUp);
      EXPECT_EQ(boxes_.Reasons.empty(), comesUp);
      boxes_.Reasons.clear();
      if (comesUp) continue;
      const auto closed = std::count(line_.Calls.begin(), line_.Calls.end(), "CloseCom");
      EXPECT_EQ(closed, pluginMode == 0 ? 1 : 0);
      form_->Form_Unload();
      EXPECT_EQ(File(), file);
    }
  }
}

TEST_F(StartUp, EachModeShowsItsOwnControls) {
  for (const bool alone : {true, false}) {
    ASSERT_TRUE(Load(FileOf("5 0 10 0 0 0"), alone ? 0 : 1));
    const std::string title = alone ? "Orlo's Keplo v" : "Orlo's Infrared Input Plugin Configuration v";
    EXPECT_EQ(form_->Title(), title + VersionText);
    EXPECT_EQ(form_->ReceiverType.Visible(), alone);
    EXPECT_EQ(form_->FileExit.Visible(), alone);
    EXPECT_EQ(form_->TestCheck.Visible(), alone);
    EXPECT_NE(form_->OKButton.Visible(), alone);
    form_->AboutMenu.Click();
    const std::string about = (alone ? "Keplo v" : "Keplo Input Plugin for Velmora v") + VersionText;
    EXPECT_EQ(boxes_.TakeShown().at(0).substr(0, about.size()), about);
    line_.Calls.clear();
    form_->Protocol.SelectText("Two");
    alone ? form_->FileExit.Click() : form_->OKButton.Click();
    EXPECT_EQ(line_.Calls, Texts{alone ? "CloseCom" : "DTR 0"});
    EXPECT_EQ(File(), FileOf("5 1 10 0 0 0"));
  }
}

TEST_F(StartUp, AWindowOfTheShellWorksOnTheTextInMemory) {
  ASSERT_TRUE(Load(FileOf("5 77 10 0 0 0"), 1));
  EXPECT_EQ(form_->Protocol.Text() + mod_->Store.CurProtocol, "") << "none is selected from nowhere";
  ASSERT_TRUE(Load(FileOf("5 0 10 0 0 0"), 1));
  form_.reset();
  disk_.Put("keplo.cfg", "something else");
  mod_->Settings.BeepOn = true;
  form_ = std::make_unique<Form1>(*mod_, line_, boxes_);
  ASSERT_TRUE(form_->Form_Load());
  EXPECT_TRUE(form_->BeepCheckbox.Checked());
  EXPECT_EQ(File(), FileOf("5 0 10 0 1 0")) << "the port that was found has been saved";
}

TEST_F(StartUp, TellsOnceThatNothingCanBeSaved) {
  line_.Opens = [this](std::int32_t port) { return disk_.FailAt(1, true), port == 5; };
  EXPECT_TRUE(Load(FileOf("5 0 10 1 1 3"))) << "which changes two settings";
  EXPECT_EQ(boxes_.Shown.size(), 1U);
}

TEST_F(StartUp, ASettingThatDoesNotFitKeepsNothingElseFromTheFile) {
  Ports = {{2, 1}, {12, 1}};
  std::string full = FileOf("2 0 10 0 0 0");
  full.insert(full.find("# made"), "#" + std::string(kMostCharacters - full.size() - 3, '.') + "\r\n");
  ASSERT_EQ(full.size(), kMostCharacters);
  ASSERT_TRUE(Load(full));
  form_->Protocol.SelectText("Two");
  form_->ComList.Select(1);
  form_->Form_Unload();
  ExpectPart(File(), "PROTOCOL= 1\r\n");
  ExpectPart(File(), "COMPORT= 2\r\n");
  EXPECT_EQ(boxes_.TakeShown().size(), 2U) << "when it was chosen, and at the end";
}

}  // namespace
}  // namespace keplo::tests
