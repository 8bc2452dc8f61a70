#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

class LayoutTest : public WindowTest {};

TEST_F(LayoutTest, EveryControlLiesInsideItsHolderAndHasAModelOfItsOwn) {
  Form1& form = Open(Config(""));
  std::set<const ui::Control*> models;
  for (const ControlRow& row : Controls()) {
    const ControlRow* frame = FindControl(row.Frame);
    const Size holder = frame != nullptr ? Size{frame->At.Width, frame->At.Height}
                                         : Size{kFullInner.Width, kFullInner.Height};
    EXPECT_LE(row.At.Left + row.At.Width, holder.Width) << row.Name;
    EXPECT_LE(row.At.Top + row.At.Height, holder.Height) << row.Name;
    EXPECT_TRUE(row.Names.empty() || FindControl(row.Names) != nullptr) << row.Name;
    EXPECT_EQ(FindControl(row.Name), &row);
    EXPECT_TRUE(models.insert(&ModelOf(form, row)).second) << row.Name;
  }
}

TEST_F(LayoutTest, TheTabKeyVisitsTheControlsInTheirOrder) {
  std::map<int, std::string_view> stops;
  for (const ControlRow& row : Controls()) {
    if (row.TabIndex != kNoTabStop) stops[row.TabIndex] = row.Name;
  }
  std::string order;
  for (const auto& [index, name] : stops) order.append(order.empty() ? "" : " ").append(name);
  EXPECT_EQ(order,
            "SendButton RecButton SendPulse ComList Protocol GReset GExt Gshr SendCmd TestCheck HScroll1 "
            "CodeStr MinButton SaveCmdButton DeleteCmdButton TxDCheckBox BeepCheckbox Zone VexilCheckbox "
            "OKButton");
}

TEST_F(LayoutTest, TheSmallWindowShowsWhatSendingNeeds) {
  Form1& form = Open(Config(""));
  int resized = 0;
  form.OnResize = [&] { ++resized; };
  form.MinButton.Click();

  const Size inner{form.OuterSize().Width - kWindowEdges.Width,
                   form.OuterSize().Height - kWindowEdges.Height};
  for (const char* name : {"Protocol", "SendCmd", "SendButton", "Zone", "MinButton"}) {
    const Place& at = FindControl(name)->At;
    EXPECT_LE(at.Left + at.Width, inner.Width) << name;
    EXPECT_LE(at.Top + at.Height, inner.Height) << name;
  }
  EXPECT_EQ(form.Title(), "Keplo Send v" + VersionText);
  form.MinButton.Click();
  EXPECT_EQ(form.Title(), "Orlo's Keplo v" + VersionText);
  EXPECT_EQ(form.OuterSize(), kFullOuter);
  EXPECT_EQ(resized, 2);
}

}  // namespace
}  // namespace keplo::tests
