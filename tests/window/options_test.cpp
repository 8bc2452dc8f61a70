#include <gtest/gtest.h>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

class Options : public WindowTest {
 protected:
  void SetUp() override { Open(Config(Protocol("Mine", {"G10,EMPTY"}))); }

  std::string Saved(const std::string& key) const {
    const std::string file = File();
    const std::size_t at = file.find(key + "= ") + key.size() + 2;
    return file.substr(at, file.find('\r', at) - at);
  }
};

TEST_F(Options, ReceiverAndOutputAreKeptInOneNumber) {
  const auto type = [this] {
    EXPECT_EQ(Saved("ITYPE"), std::to_string(mod_->Settings.InterfaceType));
    return mod_->Settings.InterfaceType;
  };
  form_->TxDCheckBox.SetChecked(true);
  EXPECT_EQ(type(), 1);
  EXPECT_EQ(line_.TakeCalls(), Texts{"SetMode 1"});
  form_->IRMouseMenu.Click();
  EXPECT_EQ(type(), 9);
  EXPECT_EQ(form_->ReceiverType.Text() + std::to_string(mod_->Settings.ReceiverKind), "IRMouse1");
  form_->IRMouseMenu.Click();
  EXPECT_EQ(type(), 9);
  form_->TxDCheckBox.SetChecked(false);
  EXPECT_EQ(type(), 8);
  EXPECT_TRUE(line_.TakeCalls().empty());
  form_->StdDcdMenu.Click();
  form_->StdDcdMenu.Click();
  EXPECT_EQ(type(), 0);
  EXPECT_EQ(form_->ReceiverType.Text() + std::to_string(mod_->Settings.ReceiverKind), "DCDStd0");
  EXPECT_TRUE(form_->StdDcdMenu.Checked() && !form_->IRMouseMenu.Checked());
}

TEST_F(Options, ZoneHardwareAndSoftwareCarrierExcludeEachOther) {
  form_->TxDCheckBox.SetChecked(true);
  form_->VexilCheckbox.SetChecked(true);
  EXPECT_EQ(Saved("ITYPE") + Saved("VEXIL") + form_->Zone.Text(), "011");
  EXPECT_FALSE(form_->TxDCheckBox.Checked() || form_->TxDCheckBox.Enabled());
  EXPECT_EQ(line_.TakeCalls(), (Texts{"SetMode 1", "SetMode 2"}));
  form_->Zone.Select(4);
  EXPECT_EQ(Saved("VEXIL") + std::to_string(mod_->Settings.VexilMode), "55");

  form_->VexilCheckbox.SetChecked(false);
  EXPECT_EQ(Saved("ITYPE") + Saved("VEXIL"), "00");
  EXPECT_TRUE(form_->TxDCheckBox.Enabled() && !form_->TxDCheckBox.Checked());
  EXPECT_FALSE(form_->Zone.Visible() || form_->ZoneNr.Visible());
  EXPECT_TRUE(line_.Calls.empty());
  form_->Zone.Select(6);
  EXPECT_EQ(Saved("VEXIL"), "0");
}

TEST_F(Options, TheBeepFollowsItsBox) {
  form_->BeepCheckbox.SetChecked(false);
  EXPECT_FALSE(mod_->Settings.BeepOn);
  EXPECT_EQ(Saved("BEEPON"), "0");
  form_->BeepCheckbox.SetChecked(true);
  EXPECT_EQ(Saved("BEEPON"), "1");
}

TEST_F(Options, TheCaptureDelayIsAskedForUntilItFits) {
  const std::string ask = "Procdelay value: Enter the new ProcDelay value";
  const std::string refused = "The value must be between 0 and 100";
  const std::vector<std::tuple<std::deque<std::string>, Texts, std::string>> cases = {
      {{"100"}, {ask}, "100"},
      {{"7.5"}, {ask}, "8"},
      {{"6.5"}, {ask}, "6"},
      {{"100.4", "-1", "-0.2", "12"}, {ask, refused, ask, refused, ask, refused, ask}, "12"},
      {{"101", ""}, {ask, refused, ask}, "12"},
      {{}, {ask}, "12"},
      {{"abc"}, {ask}, "0"},
  };
  for (const auto& [answers, shown, value] : cases) {
    boxes_.Names = answers;
    form_->MenuProcDelay.Click();
    EXPECT_EQ(boxes_.TakeShown(), shown);
    EXPECT_EQ(Saved("PROCDELAY"), value);
    EXPECT_EQ(form_->ProcDelayparameter.Text() + std::to_string(mod_->Settings.ProcDelay), value + value);
  }
}

TEST_F(Options, AKeyThatTheFileLacksIsChangedInMemoryAlone) {
  Open(Config(Protocol("Mine", {"G10,EMPTY"})));
  std::string& text = mod_->Store.CfgText;
  text.erase(text.find("ITYPE= 0\r\n"), 10);
  const std::string before = File();
  form_->IRMouseMenu.Click();
  EXPECT_EQ(mod_->Settings.InterfaceType, 8);
  EXPECT_EQ(File(), before);
  EXPECT_TRUE(boxes_.Shown.empty());
}

TEST_F(Options, HelpThatCannotBeShownIsTold) {
  std::string opened;
  form_->Programs.OpenManual = [&] {
    opened += "manual ";
    return std::string();
  };
  form_->Programs.OpenWebPage = [&](const std::string& page) {
    opened += page;
    return true;
  };
  form_->HelpContentMenu.Click();
  form_->WebPageMenu.Click();
  EXPECT_EQ(opened, "manual https://keplo.example/inputkeplo");
  EXPECT_TRUE(boxes_.Shown.empty());
  form_->Programs.OpenManual = [] { return std::string("there is no browser"); };
  form_->Programs.OpenWebPage = nullptr;
  form_->HelpContentMenu.Click();
  form_->WebPageMenu.Click();
  const Texts told = boxes_.TakeShown();
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told.front(), "The manual cannot be shown: there is no browser.");
  form_->UpdateMenu.Click();
  EXPECT_EQ(boxes_.TakeShown(), Texts{"Not yet implemented"});
}

}  // namespace
}  // namespace keplo::tests
