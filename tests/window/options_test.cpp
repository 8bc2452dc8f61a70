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

TEST_F(Options, EachTakesEffectAtOnceAndIsSaved) {
  using Step = std::tuple<std::function<void()>, std::string, std::string, Texts>;
  const auto check = [](ui::CheckBox& box, bool to) { return [&box, to] { box.SetChecked(to); }; };
  const auto click = [](ui::MenuEntry& entry) { return [&entry] { entry.Click(); }; };
  Form1& form = *form_;
  int number = 0;
  for (const auto& [act, saved, shown, calls] :  // saved are ITYPE, VEXIL, BEEPON; shown receiver, TxD, zone
       std::vector<Step>{{check(form.TxDCheckBox, true), "1 0 1", "DCDStd TxD", {"SetMode 1"}},
                         {click(form.IRMouseMenu), "9 0 1", "IRMouse TxD", {}},
                         {click(form.IRMouseMenu), "9 0 1", "IRMouse TxD", {}},
                         {check(form.TxDCheckBox, false), "8 0 1", "IRMouse", {}},
                         {click(form.StdDcdMenu), "0 0 1", "DCDStd", {}},
                         {check(form.TxDCheckBox, true), "1 0 1", "DCDStd TxD", {"SetMode 1"}},
                         {check(form.VexilCheckbox, true), "0 1 1", "DCDStd off zone 1", {"SetMode 2"}},
                         {[&] { form.Zone.Select(4); }, "0 5 1", "DCDStd off zone 5", {}},
                         {check(form.VexilCheckbox, false), "0 0 1", "DCDStd", {}},
                         {[&] { form.Zone.Select(6); }, "0 0 1", "DCDStd", {}},
                         {check(form.BeepCheckbox, false), "0 0 0", "DCDStd", {}},
                         {check(form.BeepCheckbox, true), "0 0 1", "DCDStd", {}}}) {
    line_.Calls.clear();
    act();
    EXPECT_EQ(Saved("ITYPE") + " " + Saved("VEXIL") + " " + Saved("BEEPON"), saved) << ++number;
    EXPECT_EQ(std::to_string(mod_->Settings.InterfaceType) + " " + std::to_string(mod_->Settings.VexilMode) +
                  " " + std::to_string(static_cast<int>(mod_->Settings.BeepOn)),
              saved);
    EXPECT_EQ(form.ReceiverType.Text() + (form.TxDCheckBox.Checked() ? " TxD" : "") +
                  (form.TxDCheckBox.Enabled() ? "" : " off") +
                  (form.Zone.Visible() && form.ZoneNr.Visible() ? " zone " + form.Zone.Text() : ""),
              shown);
    EXPECT_EQ(form.IRMouseMenu.Checked(), mod_->Settings.ReceiverKind == 1);
    EXPECT_NE(form.IRMouseMenu.Checked(), form.StdDcdMenu.Checked());
    EXPECT_EQ(line_.Calls, calls);
  }
}

TEST_F(Options, TheCaptureDelayIsAskedForUntilValid) {
  const std::string ask = "Procdelay value: Enter the new ProcDelay value";
  const std::string refused = "The value must be between 0 and 100";
  for (const auto& [answers, shown, value] :
       std::vector<std::tuple<std::deque<std::string>, Texts, std::string>>{
           {{"100"}, {ask}, "100"},
           {{"7.5"}, {ask}, "8"},
           {{"6.5"}, {ask}, "6"},
           {{"100.4", "-1", "-0.2", "12"}, {ask, refused, ask, refused, ask, refused, ask}, "12"},
           {{"101", ""}, {ask, refused, ask}, "12"},
           {{}, {ask}, "12"},
           {{"abc"}, {ask}, "0"}}) {
    boxes_.Names = answers;
    form_->MenuProcDelay.Click();
    EXPECT_EQ(boxes_.TakeShown(), shown);
    EXPECT_EQ(Saved("PROCDELAY"), value);
    EXPECT_EQ(form_->ProcDelayparameter.Text() + std::to_string(mod_->Settings.ProcDelay), value + value);
  }
}

TEST_F(Options, MissingHelpIsReported) {
  std::string opened;
  form_->Programs = {[] { return std::string(); },
                     [&](const std::string& page) {
                       opened = page;
                       return true;
                     }};
  form_->HelpContentMenu.Click();
  form_->WebPageMenu.Click();
  EXPECT_EQ(opened, "https://keplo.example/inputkeplo");
  EXPECT_TRUE(boxes_.Shown.empty());
  form_->Programs = {[] { return std::string("there is no browser"); }, nullptr};
  form_->HelpContentMenu.Click();
  form_->WebPageMenu.Click();
  form_->UpdateMenu.Click();
  ASSERT_EQ(boxes_.Shown.size(), 3U);
  EXPECT_EQ(boxes_.Shown[0] + boxes_.Shown[2],
            "The manual cannot be shown: there is no browser.Not yet implemented");
}

}  // namespace
}  // namespace keplo::tests
