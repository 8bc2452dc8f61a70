#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "looks.h"
#include "qt/label_view.h"
#include "qt/list_view_widget.h"
#include "qt/popup_menu_view.h"
#include "qt/qt_timer.h"
#include "qt/text.h"
#include "qt/text_box_view.h"

namespace keplo::qt {
namespace {

using tests::Texts;

TEST(ShownText, KeepsOldTextsAndEscapesAmpersands) {
  EXPECT_EQ(ShownText("Fernseher \xC3\xBC"), QStringLiteral("Fernseher ü"));
  EXPECT_EQ(ShownText("Fernseher \xFC"), QStringLiteral("Fernseher ü")) << "a file from before UTF-8";
  EXPECT_EQ(ShownCaption("Sound & picture", 'P'), QStringLiteral("Sound && &picture"));
  EXPECT_EQ(ShownCaption("OK", 'x'), QStringLiteral("OK"));
}

TEST(LabelView, StaysReadableOnEveryBackColour) {
  for (const bool dark : {false, true}) {
    const tests::UserLooks looks(1, dark);
    ui::Label model("AVAILABLE");
    for (const auto ground : {QPalette::Base, QPalette::Window}) {
      const LabelView view(model, "Port Status:", nullptr, ground);
      for (const std::optional<ui::Colour>& colour :
           {std::optional(ui::kGreen), {ui::kRed}, {ui::kBlue}, {ui::Colour{119, 119, 119}}, {}}) {
        model.SetBackColour(colour);
        EXPECT_FALSE(tests::IsFaint(view)) << (dark ? "dark" : "light");
      }
      EXPECT_EQ(view.accessibleName(), QStringLiteral("Port Status: AVAILABLE"));
    }
  }
}

class ListBinding : public ::testing::Test {
 protected:
  ListBinding() {
    model_.AddColumn("Event Name", 2000);
    for (const char* name : {"Lamp", "Fan", "Radio"}) model_.SetText(model_.Add(), 0, name);
    view_.Refresh();
  }

  Texts Shown() {
    QCoreApplication::processEvents();
    Texts names;
    for (int row = 0; row < view_.model()->rowCount(); ++row)
      names.push_back(view_.model()->index(row, 0).data().toString().toStdString());
    return names;
  }
  QPoint Row(int number) { return view_.visualRect(view_.model()->index(number - 1, 0)).center(); }

  ui::ListView model_;
  ListViewWidget view_{model_, nullptr};
};

TEST_F(ListBinding, FollowsRowsAndTextsAndDrawsManyOnce) {
  model_.SetText(2, 0, "Ventilator");
  model_.SetText(model_.Add(), 0, "TV");
  EXPECT_EQ(Shown(), (Texts{"Lamp", "Ventilator", "Radio", "TV"}));
  model_.Remove(1);
  EXPECT_EQ(Shown(), (Texts{"Ventilator", "Radio", "TV"}));
  QSignalSpy insertions(view_.model(), &QAbstractItemModel::rowsInserted);
  for (int event = 0; event < 1000; ++event) model_.SetText(model_.Add(), 0, "more");
  EXPECT_EQ(Shown().size(), 1003U);
  EXPECT_EQ(insertions.count(), 1);
}

TEST_F(ListBinding, SelectsInBothDirectionsAndIgnoresRemovedRows) {
  QTest::mouseClick(view_.viewport(), Qt::LeftButton, {}, Row(2));
  EXPECT_EQ(model_.SelectedRow(), 2);
  QTest::keyClick(&view_, Qt::Key_Down);
  EXPECT_EQ(model_.SelectedRow(), 3);
  model_.Select(1);
  Shown();
  EXPECT_EQ(view_.selectionModel()->selectedRows().first().row(), 0);
  const QPoint last = Row(3);
  model_.Remove(1);
  QTest::mousePress(view_.viewport(), Qt::LeftButton, {}, last);
  EXPECT_EQ(model_.SelectedRow(), 0);
}

TEST(ModelLink, LetsEitherSideDieFirstAndFollowsTheLatestView) {
  auto text = std::make_unique<ui::TextBox>();
  auto list = std::make_unique<ui::ListView>();
  auto menu = std::make_unique<ui::PopupMenu>();
  auto timer = std::make_unique<ui::Timer>(2);
  {
    const TextBoxView gone(*text, nullptr);
    const ListViewWidget goneList(*list, nullptr);
    const PopupMenuView goneMenu(*menu, nullptr);
    const QtTimer goneTimer(*timer);
  }
  text->SetText("Lamp");
  list->Add();
  menu->PopUp();
  timer->SetEnabled(true);

  auto earlier = std::make_unique<TextBoxView>(*text, nullptr);
  TextBoxView textView(*text, nullptr);
  earlier.reset();
  text->SetText("Fan");
  ListViewWidget listView(*list, nullptr);
  QtTimer ticking(*timer);
  text.reset();
  list->Add();  // leaves a redraw waiting
  list.reset();
  timer.reset();
  QTest::keyClicks(&textView, QStringLiteral("s"));
  QTest::mousePress(listView.viewport(), Qt::LeftButton, {}, QPoint(3, 3));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !ticking.isActive(); }, 60'000));
  EXPECT_EQ(textView.text(), QStringLiteral("Fans"));
}

TEST(QtTimer, TicksWhileItsModelIsEnabled) {
  ui::Timer model(2);
  int ticks = 0;
  model.OnTimer = [&] {
    model.SetEnabled(false);
    model.SetEnabled(++ticks < 3);
  };
  const QtTimer timer(model);
  EXPECT_FALSE(timer.isActive());
  model.SetEnabled(true);
  EXPECT_TRUE(QTest::qWaitFor([&] { return ticks == 3 && !timer.isActive(); }, 60'000));
}

}  // namespace
}  // namespace keplo::qt
