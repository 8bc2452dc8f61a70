#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <optional>

#include "looks.h"
#include "qt/check_box_view.h"
#include "qt/drop_down_view.h"
#include "qt/label_view.h"
#include "qt/list_view_widget.h"
#include "qt/popup_menu_view.h"
#include "qt/qt_timer.h"
#include "qt/text.h"
#include "qt/text_box_view.h"

namespace keplo::qt {
namespace {

TEST(ShownText, KeepsOldTextsAndEscapesAmpersands) {
  EXPECT_EQ(ShownText("Fernseher \xC3\xBC"), QStringLiteral("Fernseher ü"));
  EXPECT_EQ(ShownText("Fernseher \xFC"), QStringLiteral("Fernseher ü")) << "a file from before UTF-8";
  EXPECT_EQ(ShownCaption("Sound & picture", 'P'), QStringLiteral("Sound && &picture"));
  EXPECT_EQ(ShownCaption("OK", 'x'), QStringLiteral("OK"));
}

TEST(TextBoxView, PassesTypingOnAndRedraws) {
  ui::TextBox model;
  model.SetText("Lamp");
  TextBoxView view(model, nullptr);
  EXPECT_EQ(view.text(), QStringLiteral("Lamp"));

  QTest::keyClicks(&view, QStringLiteral(" 2"));
  EXPECT_EQ(model.Text(), "Lamp 2");

  model.SetText("Fan");
  EXPECT_EQ(view.text(), QStringLiteral("Fan"));
}

TEST(CheckBoxView, RunsTheHandlerOncePerChange) {
  ui::CheckBox model;
  int clicks = 0;
  model.OnClick = [&] { ++clicks; };
  CheckBoxView view(model, QStringLiteral("Enabled"), nullptr);

  QTest::keyClick(&view, Qt::Key_Space);
  EXPECT_TRUE(model.Checked());
  EXPECT_EQ(clicks, 1);

  model.SetChecked(false);
  EXPECT_FALSE(view.isChecked());
  EXPECT_EQ(clicks, 2);
}

TEST(DropDownView, PicksByKeyAndFollowsARefill) {
  ui::DropDownList model;
  for (const char* entry : {"NEC", "SONY", "RC5"}) model.Add(entry);
  std::vector<std::string> picked;
  model.OnClick = [&] { picked.push_back(model.Text()); };
  DropDownView view(model, nullptr);
  EXPECT_EQ(view.currentIndex(), -1) << "nothing is selected in the model";

  QTest::keyClick(&view, Qt::Key_Down);
  QTest::keyClick(&view, Qt::Key_Down);
  EXPECT_EQ(picked, (std::vector<std::string>{"NEC", "SONY"}));

  model.Clear();
  model.Add("Template");
  EXPECT_EQ(view.count(), 1);
  EXPECT_EQ(view.currentText(), QString());
  model.Select(0);
  EXPECT_EQ(view.currentText(), QStringLiteral("Template"));
  EXPECT_EQ(picked.size(), 3U) << "redrawing picks nothing";
}

TEST(LabelView, StaysReadableOnEveryBackColour) {
  for (const bool dark : {false, true}) {
    const tests::UserLooks looks(1, dark);
    QWidget window;
    ui::Label model("AVAILABLE");
    LabelView view(model, "Port Status:", &window);
    const std::vector<std::optional<ui::Colour>> colours = {ui::kGreen, ui::kRed, ui::Colour{0, 0, 128},
                                                            ui::Colour{119, 119, 119}, std::nullopt};
    for (const auto& colour : colours) {
      model.SetBackColour(colour);
      EXPECT_EQ(tests::FaintIn(window), std::vector<std::string>{}) << (dark ? "dark" : "light");
    }
    model.SetText("UNAVAILABLE");
    EXPECT_EQ(view.accessibleName(), QStringLiteral("Port Status: UNAVAILABLE"));
  }
}

class ListBinding : public ::testing::Test {
 protected:
  ListBinding() {
    model_.AddColumn("Event Name", 2000);
    model_.AddColumn("Zone", 600);
    for (const char* name : {"Lamp", "Fan", "Radio"}) model_.SetText(model_.Add(), 0, name);
    view_.Refresh();
  }

  std::vector<std::string> Shown() {
    QCoreApplication::processEvents();
    std::vector<std::string> names;
    const QAbstractItemModel& rows = *view_.model();
    for (int row = 0; row < rows.rowCount(); ++row) {
      names.push_back(rows.index(row, 0).data().toString().toStdString());
    }
    return names;
  }

  int SelectedInView() {
    QCoreApplication::processEvents();
    const QModelIndexList rows = view_.selectionModel()->selectedRows();
    return rows.isEmpty() ? 0 : rows.first().row() + 1;
  }

  ui::ListView model_;
  ListViewWidget view_{model_, nullptr};
};

TEST_F(ListBinding, FollowsRowsAndTexts) {
  model_.SetText(2, 0, "Ventilator");
  model_.SetText(model_.Add(), 0, "TV");
  EXPECT_EQ(Shown(), (std::vector<std::string>{"Lamp", "Ventilator", "Radio", "TV"}));
  model_.Remove(1);
  EXPECT_EQ(Shown(), (std::vector<std::string>{"Ventilator", "Radio", "TV"}));
  while (model_.Count() > 0) model_.Remove(1);
  EXPECT_EQ(Shown(), std::vector<std::string>{});
}

TEST_F(ListBinding, SelectsBothWays) {
  QTest::mouseClick(view_.viewport(), Qt::LeftButton, {},
                    view_.visualRect(view_.model()->index(1, 0)).center());
  EXPECT_EQ(model_.SelectedRow(), 2);
  QTest::keyClick(&view_, Qt::Key_Down);
  EXPECT_EQ(model_.SelectedRow(), 3);

  model_.Select(1);
  EXPECT_EQ(SelectedInView(), 1);
  model_.Remove(1);
  EXPECT_EQ(SelectedInView(), 0);
}

TEST_F(ListBinding, APressOnARowThatHasJustGoneSelectsNothing) {
  const QPoint last = view_.visualRect(view_.model()->index(2, 0)).center();
  model_.Remove(1);
  QTest::mousePress(view_.viewport(), Qt::LeftButton, {}, last);
  EXPECT_EQ(model_.SelectedRow(), 0);
}

TEST_F(ListBinding, DrawsAFilledListOnce) {
  QSignalSpy insertions(view_.model(), &QAbstractItemModel::rowsInserted);
  for (int event = 0; event < 1000; ++event) model_.SetText(model_.Add(), 0, "more");
  EXPECT_EQ(Shown().size(), 1003U);
  EXPECT_EQ(insertions.count(), 1);
}

TEST(ModelLink, LetsEitherSideGoFirst) {
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

  TextBoxView textView(*text, nullptr);
  ListViewWidget listView(*list, nullptr);
  QtTimer ticking(*timer);
  text.reset();
  list->Add();  // leaves a redraw waiting
  list.reset();
  timer.reset();
  QTest::keyClicks(&textView, QStringLiteral("s"));
  QTest::mousePress(listView.viewport(), Qt::LeftButton, {}, QPoint(3, 3));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !ticking.isActive(); }));
  EXPECT_EQ(textView.text(), QStringLiteral("Lamps"));
}

TEST(ModelLink, GoesToTheViewThatCameLast) {
  ui::TextBox model;
  auto earlier = std::make_unique<TextBoxView>(model, nullptr);
  const TextBoxView later(model, nullptr);
  earlier.reset();
  model.SetText("Lamp");
  EXPECT_EQ(later.text(), QStringLiteral("Lamp"));
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
  ASSERT_TRUE(QTest::qWaitFor([&] { return ticks == 3; }));
  EXPECT_FALSE(timer.isActive());
}

}  // namespace
}  // namespace keplo::qt
